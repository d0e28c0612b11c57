#include "qellib10/evaluation/curve_lines.h"

#include <cmath>
#include <numeric>

namespace qel {
namespace {

constexpr double kCertainBend = 6;  // standard errors

std::optional<LeastSquares> FitPowers(std::span<const double> x, std::span<const double> y,
                                      std::span<const double> weights, double center, std::size_t columns) {
    std::vector<double> design;
    for (const double place : x) {
        double power = 1;
        for (std::size_t k = 0; k < columns; ++k, power *= place - center) design.push_back(power);
    }
    return FitLeastSquares(design, columns, y, weights);
}

}  // namespace

bool StraightLine::IsBent(double most) const {
    return std::abs(bend) > kCertainBend * bendError && std::abs(bend) > most;
}

double StraightLine::Variance(double place) const {
    const double function[] = {1, place - center};
    return scatter * scatter * fit.Variance(function);
}

std::optional<StraightLine> FitLine(std::span<const double> x, std::span<const double> y,
                                    std::span<const double> weights, double leastScatter) {
    if (x.size() < 3) return std::nullopt;
    StraightLine line;
    line.center = std::midpoint(x.front(), x.back());
    const auto straight = FitPowers(x, y, weights, line.center, 2);
    if (!straight) return std::nullopt;
    line.fit = *straight;
    line.scatter = std::max(straight->Scatter(), leastScatter);
    if (const auto bent = FitPowers(x, y, weights, line.center, 3); bent && bent->degreesOfFreedom > 0) {
        const double across = 2 * (x.back() - x.front());
        line.bend = bent->coefficients[2] * across;
        line.bendError = std::max(bent->Scatter(), leastScatter) * std::sqrt(bent->Covariance(2, 2)) * across;
    }
    return line;
}

}  // namespace qel
