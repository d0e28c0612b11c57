#include "sharp_step.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <numeric>

namespace titration {
namespace {

constexpr std::size_t kSlopes = 3, kReadings = kSlopes + 1;
constexpr double kCertainty = 5;           // deviations
constexpr double kUneven = 3;              // a longer interval beside the steepest one tells too little
constexpr double kLeastOfSteepest = 1e-3;  // a slope that is flatter has no logarithm of use

using Readings = std::array<double, kReadings>;
using Slopes = std::array<double, kSlopes>;

Slopes SlopesOf(const Readings& x, const Readings& y, double direction) {
    Slopes slopes;
    for (std::size_t i = 0; i < kSlopes; ++i) slopes[i] = direction * (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
    return slopes;
}

double TopOf(const Readings& x, const Slopes& slopes) {
    Slopes middle, height;
    for (std::size_t i = 0; i < kSlopes; ++i) {
        middle[i] = std::midpoint(x[i], x[i + 1]);
        height[i] = std::log(std::max(slopes[i], kLeastOfSteepest * slopes[1]));
    }
    const double before = (height[1] - height[0]) / (middle[1] - middle[0]),
                 after = (height[2] - height[1]) / (middle[2] - middle[1]);
    const double top = std::midpoint(middle[0], middle[1]) + before / (before - after) * (middle[2] - middle[0]) / 2;
    return top;
}

double ErrorOfTop(const Readings& x, const Readings& y, double direction, double noise) {
    const double top = TopOf(x, SlopesOf(x, y, direction));
    double error = 0;
    for (std::size_t i = 0; i < kReadings; ++i) {
        Readings moved = y;
        moved[i] += noise;
        error = std::hypot(error, TopOf(x, SlopesOf(x, moved, direction)) - top);
    }
    return error;
}

std::size_t SteepestInterval(const Points& points, double direction) {
    std::size_t at = 0;
    double steepest = 0;
    for (std::size_t i = 0; i + 1 < points.x.size(); ++i) {
        const double slope = direction * (points.y[i + 1] - points.y[i]) / (points.x[i + 1] - points.x[i]);
        if (slope > steepest) at = i, steepest = slope;
    }
    return at;
}

}  // namespace

std::optional<Step> SharpStep(const Points& points, double direction, double noise) {
    const std::size_t at = SteepestInterval(points, direction);
    if (at == 0 || at + kSlopes > points.x.size()) return std::nullopt;
    Readings x, y;
    std::copy_n(points.x.begin() + static_cast<std::ptrdiff_t>(at - 1), kReadings, x.begin());
    std::copy_n(points.y.begin() + static_cast<std::ptrdiff_t>(at - 1), kReadings, y.begin());
    Slopes slopes = SlopesOf(x, y, direction);
    bool areCertain = true, isAlone = true;
    for (const std::size_t i : {std::size_t{0}, std::size_t{2}}) {
        const double error = kCertainty * std::numbers::sqrt2 * noise / (x[i + 1] - x[i]);
        areCertain = areCertain && slopes[i] > error;
        isAlone = isAlone && slopes[1] - slopes[i] > error + kCertainty * std::numbers::sqrt2 * noise / (x[2] - x[1]);
        slopes[i] = std::max(slopes[i], error);
    }
    if (!areCertain && !isAlone) return std::nullopt;
    const double longest = std::max(x[1] - x[0], x[3] - x[2]), top = TopOf(x, slopes);
    areCertain = areCertain && longest <= kUneven * (x[2] - x[1]) && top > x[1] && top < x[2];
    Step step{std::clamp(top, x[1], x[2]), 0, direction * slopes[1], kReadings, 0, x[2] - x[1]};
    step.signal = std::lerp(y[1], y[2], (step.volume - x[1]) / step.interval);
    step.error = areCertain ? ErrorOfTop(x, y, direction, noise) : std::numeric_limits<double>::infinity();
    return step;
}

}  // namespace titration
