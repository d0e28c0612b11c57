#include "end_point.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "cubic_fit.h"
#include "failure.h"
#include "points.h"

namespace titration {
namespace {

constexpr std::size_t kFewestPoints = 5;
constexpr std::size_t kLongestRun = 500;     // keeps the time for a long curve in bounds
constexpr double kSlopeTolerance = 0.1;      // of the slope
constexpr double kBendCertainty = 4;         // standard errors
constexpr double kLowerQuartile = 0.318639;  // of |z| for standard normal z

// Third divided differences show no parabola, only noise and sharp bends. Each is scaled to the deviation of a single
// reading, and the lower quartile is taken because the bends of a curve with few points would fill the upper half.
double Noise(const Points& points) {
    std::vector<double> deviations;
    for (std::size_t i = 0; i + 4 <= points.x.size(); ++i) {
        double sum = 0;
        double squares = 0;
        for (std::size_t j = i; j < i + 4; ++j) {
            double product = 1;
            for (std::size_t k = i; k < i + 4; ++k) {
                if (k != j) product *= points.x[j] - points.x[k];
            }
            sum += points.y[j] / product;
            squares += 1 / (product * product);
        }
        deviations.push_back(std::abs(sum) / std::sqrt(squares));
    }
    const auto quartile = deviations.begin() + static_cast<std::ptrdiff_t>(deviations.size() / 4);
    std::ranges::nth_element(deviations, quartile);
    return *quartile / kLowerQuartile;
}

double Direction(const std::vector<double>& y) {
    const std::size_t n = y.size();
    return Median(y[n - 1], y[n - 2], y[n - 3]) < Median(y[0], y[1], y[2]) ? -1 : 1;
}

std::optional<EndPoint> Candidate(std::span<const double> x, std::span<const double> y, double direction,
                                  double noise) {
    const std::optional<CubicFit> fit = CubicFit::Through(x, y);
    if (!fit) return std::nullopt;
    const double volume = fit->Inflection();
    if (!(volume >= x[1] && volume <= x[x.size() - 2])) return std::nullopt;
    const double slope = fit->Slope(volume) * direction;
    if (slope <= 0 || noise * fit->SlopeError(volume) > kSlopeTolerance * slope) return std::nullopt;
    const double bend = -fit->ThirdDerivative() * direction;
    if (bend <= 0 || noise * fit->ThirdDerivativeError() * kBendCertainty > bend) return std::nullopt;
    return EndPoint{volume, fit->Value(volume), slope * direction, noise, x.size()};
}

}  // namespace

EndPoint FindEndPoint(const Curve& curve) {
    const Points measured = Merged(curve);
    const std::size_t count = measured.x.size();
    if (count < kFewestPoints) {
        throw Failure("an end point needs at least " + std::to_string(kFewestPoints) + " points, there are " +
                      std::to_string(count));
    }
    const double noise = Noise(measured);
    const Points points = WithoutStrays(measured);
    const double direction = Direction(points.y);

    std::optional<EndPoint> best;
    const std::size_t longest = std::clamp(count / 2, kFewestPoints, kLongestRun);
    for (std::size_t length = kFewestPoints; length <= longest; length += std::max<std::size_t>(1, length / 8)) {
        for (std::size_t i = 0; i + length <= count; ++i) {
            const auto found = Candidate(std::span(points.x).subspan(i, length), std::span(points.y).subspan(i, length),
                                         direction, noise);
            if (found && (!best || std::abs(found->slope) > std::abs(best->slope))) best = found;
        }
    }
    if (!best) throw Failure("no end point: the curve has no step that stands out from its noise");
    return *best;
}

}  // namespace titration
