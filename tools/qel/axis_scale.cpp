#include "axis_scale.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <qellib10/qellib10.h>

namespace tool {
namespace {

constexpr int kMaxSteps = 10, kMaxDecimals = 12;

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
    const qel::AxisSteps steps = qel::StepsOver(low, high, kMaxSteps);
    return Labelled({steps.Value(0), steps.Value(steps.count), steps.count, 0, 1}, steps.step);
}

AxisScale ScaleBetween(double minimum, double maximum) {
    return Labelled({minimum, maximum, 1, 0, 1}, std::abs(maximum - minimum));
}

}  // namespace tool
