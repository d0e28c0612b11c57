#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "qellib10/graph/axis_ticks.h"
#include "qellib10/graph/tick_text.h"

namespace qel {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();
constexpr double kLeastRange = 1e-303;  // below, ticks cannot be distinguished
constexpr double kRounding = 1e-13;     // of values that differ only by rounding
constexpr double kShare = 0.05;
constexpr double kNarrow = 0.5;  // decades

AxisRange Around(double low, double high, double margin) {
    return {std::max(low - margin, -kLargest), std::min(high + margin, kLargest)};
}

double MarginOfOne(double size, ChartScale scale) {
    switch (scale) {
        case ChartScale::kTime:
            return std::max(30.0, size * 1e-9);
        case ChartScale::kCategories:
            return std::max(0.5, size * 1e-9);
        default:
            return size < kLeastRange ? 1 : size / 2;
    }
}

AxisRange LinearRange(double low, double high, ChartScale scale) {
    const double size = std::max(std::abs(low), std::abs(high)), half = high / 2 - low / 2;
    const bool isOne = half < std::max(kRounding / 2 * size, kLeastRange);
    if (isOne || (scale == ChartScale::kTime && half < 1e-3)) return Around(low, high, MarginOfOne(size, scale));
    return Around(low, high, scale == ChartScale::kCategories ? MarginOfOne(size, scale) : 2 * kShare * half);
}

// The nearest round number that is not above @p value, or not below it.
double RoundEnd(double value, bool isUp, bool isDecade) {
    const int exponent = ShortestDigits(value).Exponent();
    double below = value, above = value;
    for (const int number : {1, 2, 5, 10}) {
        if (isDecade && number != 1 && number != 10) continue;
        const double round = Scaled(number, exponent);
        if (round <= value) below = round;
        if (round >= value) {
            above = round;
            break;
        }
    }
    return isUp ? std::min(above, kLargest) : below > 0 ? below : value;
}

AxisRange LogRange(double low, double high) {
    if (!(high > 0)) return {1, 10};
    if (!(low > 0)) low = std::max(high / 1000, kLeast);
    if (low >= high * (1 - kRounding)) {
        low = std::max(low / 2, kLeast);
        high = std::min(high, kLargest / 2) * 2;
    }
    // Round ends would leave the data a small part of the axis.
    const double decades = std::log10(high) - std::log10(low);
    if (decades < kNarrow) {
        const double factor = std::pow(10, kShare * decades);
        return {std::max(low / factor, kLeast), std::min(high * factor, kLargest)};
    }
    const bool isDecade = decades >= 3;
    return {RoundEnd(low, false, isDecade), RoundEnd(high, true, isDecade)};
}

}  // namespace

AxisRange PaddedRange(double low, double high, ChartScale scale) {
    if (!std::isfinite(low)) low = high;
    if (!std::isfinite(low)) low = 0;
    if (!std::isfinite(high)) high = low;
    if (low > high) std::swap(low, high);
    return scale == ChartScale::kLogarithmic ? LogRange(low, high) : LinearRange(low, high, scale);
}

}  // namespace qel
