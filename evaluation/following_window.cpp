#include "qellib10/evaluation/following_window.h"

#include <cmath>

#include "qellib10/evaluation/local_fit.h"
#include "qellib10/platform/algebra/least_squares.h"

namespace qel {
namespace {

constexpr double kChance = 3;  // standard deviations of a variance that is found from few residuals

bool Follows(const CurveData& data, std::pair<std::size_t, std::size_t> window, std::size_t degree) {
    const auto [first, last] = window;
    const double center = (data.x[first] + data.x[last - 1]) / 2, scale = (data.x[last - 1] - data.x[first]) / 2;
    std::vector<double> design;
    for (std::size_t i = first; i < last; ++i) {
        double power = 1;
        for (std::size_t k = 0; k <= degree; ++k, power *= (data.x[i] - center) / scale) design.push_back(power);
    }
    const auto part = [&](const std::vector<double>& values) { return std::span(values).subspan(first, last - first); };
    const auto fit = FitLeastSquares(design, degree + 1, part(data.y), part(data.counts));
    if (!fit || fit->degreesOfFreedom == 0) return false;
    const auto degrees = static_cast<double>(fit->degreesOfFreedom);
    return fit->squares / degrees <= data.noise * data.noise * (1 + kChance * std::sqrt(2 / degrees));
}

}  // namespace

std::size_t FollowingWindow(const CurveData& data, std::size_t first, std::size_t last, std::size_t window,
                            std::size_t degree) {
    for (std::size_t length = window; length >= degree + 2; length -= 2) {
        const LocalFit fit(data, length, degree);
        bool follows = true;
        for (std::size_t i = first; i <= last && follows; ++i) follows = Follows(data, fit.WindowAt(i), degree);
        if (follows) return length;
    }
    return 0;
}

}  // namespace qel
