#include "qellib10/curve/stray_readings.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qel {
namespace {

struct Quotient {
    double slope, error;
};

// A slope that is a fifth of the steepest is part of the step; in a valley it falls by a quarter or more. Less may come
// from a burette whose small doses are uneven.
constexpr double kOfStep = 0.2, kOfValley = 0.75, kCertainty = 5;

bool IsValley(const std::vector<Quotient>& slopes, std::size_t at, double steepest) {
    const Quotient& low = slopes[at];
    const auto isAbove = [&](const Quotient& other) {
        return other.slope > kOfStep * steepest && low.slope < kOfValley * other.slope &&
               other.slope - low.slope > kCertainty * std::hypot(other.error, low.error);
    };
    const auto middle = slopes.begin() + static_cast<std::ptrdiff_t>(at);
    return std::any_of(slopes.begin(), middle, isAbove) && std::any_of(middle + 1, slopes.end(), isAbove);
}

}  // namespace

std::vector<bool> StrayReadings(const std::vector<double>& signal, double tolerance) {
    const std::size_t count = signal.size();
    std::vector<bool> strays(count);
    std::vector<double> around;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t half = std::min({i, count - 1 - i, kLongestStray});
        const auto at = signal.begin() + static_cast<std::ptrdiff_t>(i);
        const auto reach = static_cast<std::ptrdiff_t>(half);
        around.assign(at - reach, at + reach + 1);
        std::ranges::nth_element(around, around.begin() + reach);
        strays[i] = std::abs(signal[i] - around[half]) > tolerance;
    }
    return strays;
}

bool IsOneStep(const CurvePoints& points, double direction, double noise, double tolerance) {
    std::vector<Quotient> slopes;
    double steepest = 0;
    for (std::size_t i = 0; i + 1 < points.x.size(); ++i) {
        const double step = points.x[i + 1] - points.x[i], rise = direction * (points.y[i + 1] - points.y[i]);
        if (rise < -tolerance) return false;
        slopes.push_back({rise / step, noise * std::numbers::sqrt2 / step});
        steepest = std::max(steepest, rise / step);
    }
    for (std::size_t i = 1; i + 1 < slopes.size(); ++i) {
        if (IsValley(slopes, i, steepest)) return false;
    }
    return true;
}

}  // namespace qel
