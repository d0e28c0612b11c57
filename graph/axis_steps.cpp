#include "qellib10/graph/axis_steps.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace qel {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kLeastRange = 1e-290;  // below, steps cannot be distinguished
constexpr int kMaxSteps = 1000;
constexpr double kRound[] = {1, 2, 2.5, 5, 10, 20, 25, 50, 100};

bool IsQuarter(double round) { return round == 2.5 || round == 25; }

std::pair<double, double> Around(double value) {
    const double margin = std::abs(value) < kLeastRange ? 1 : std::abs(value) / 2;
    return {std::max(value - margin, -kLargest), std::min(value + margin, kLargest)};
}

}  // namespace

double AxisSteps::Value(int line) const {
    const double place = first + line;
    const double perUnit = std::round(1 / step);  // a step below 1 is not an exact binary number, its reciprocal is
    const double value = step < 1 && 1 / perUnit == step ? place / perUnit : place * step;
    return std::clamp(value, -kLargest, kLargest);
}

CString AxisSteps::Text(int line) const {
    CString text;
    text.Format("%.10g", Value(line));
    return text;
}

AxisSteps StepsOver(double low, double high, int maxSteps, RoundSteps round) {
    if (!std::isfinite(low) || !std::isfinite(high)) return {};
    if (low > high) std::swap(low, high);
    maxSteps = std::clamp(maxSteps, low < 0 && high > 0 ? 2 : 1, kMaxSteps);
    if (high / 2 - low / 2 < kLeastRange) std::tie(low, high) = Around(low);
    const int exponent = static_cast<int>(std::floor(std::log10(high / maxSteps - low / maxSteps)));
    const double decade = std::pow(10, std::abs(exponent));
    AxisSteps steps;
    for (const double number : kRound) {
        if (round == RoundSteps::kWithoutQuarters && IsQuarter(number)) continue;
        steps.step = exponent < 0 ? number / decade : number * decade;
        steps.first = std::floor(low / steps.step);
        const double count = std::max(1.0, std::ceil(high / steps.step) - steps.first);
        steps.count = static_cast<int>(count);
        if (count <= maxSteps) break;
    }
    return steps;
}

}  // namespace qel
