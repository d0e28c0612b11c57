#include "axis_scale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tool {
namespace {

constexpr int kMaxSteps = 10, kMaxDecimals = 12;
constexpr double kLeastRange = 1e-290;  // below, steps cannot be distinguished

// Decimal places needed to distinguish @p value from its neighbours at a distance of @p step.
int DecimalsOf(double value, double step) {
    int decimals = 0;
    for (double unit = 1; decimals < kMaxDecimals; ++decimals, unit *= 10) {
        if (std::abs(std::round(value * unit) / unit - value) < step * 1e-6) break;
    }
    return decimals;
}

AxisScale Labelled(AxisScale scale, double step) {
    scale.decimals = std::max({DecimalsOf(scale.minimum, step), DecimalsOf(scale.maximum, step), 0});
    const double largest = std::max(std::abs(scale.minimum), std::abs(scale.maximum));
    scale.digits = 1 + (largest >= 10 ? static_cast<int>(std::log10(largest)) : 0) + (scale.minimum < 0 ? 1 : 0);
    return scale;
}

}  // namespace

AxisScale ScaleOver(const std::vector<double>& values) {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (const double value : values) {
        if (value < low) low = value;
        if (value > high) high = value;
    }
    if (high / 2 - low / 2 < kLeastRange) {
        const double margin = std::abs(low) < kLeastRange ? 1 : std::abs(low) / 2;
        low -= margin;
        high += margin;
    }
    const double least = high / kMaxSteps - low / kMaxSteps;
    const int exponent = static_cast<int>(std::floor(std::log10(least)));
    const double decade =
        std::pow(10, std::abs(exponent));  // divided if it is a fraction, which gives 0.6, not 3 * 0.2
    const auto times = [&](double count) { return exponent < 0 ? count / decade : count * decade; };
    for (const int round : {1, 2, 5, 10, 20}) {
        const double step = times(round);
        const double first = std::floor(low / step), last = std::ceil(high / step);
        if (last - first > kMaxSteps || last <= first) continue;
        return Labelled({times(first * round), times(last * round), static_cast<int>(last - first), 0, 1}, step);
    }
    return ScaleBetween(low, high);
}

AxisScale ScaleBetween(double minimum, double maximum) {
    return Labelled({minimum, maximum, 1, 0, 1}, std::abs(maximum - minimum));
}

}  // namespace tool
