#include "qellib10/graph/chart_value_text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "qellib10/graph/chart_axis_layout.h"
#include "qellib10/graph/tick_text.h"
#include "qellib10/graph/wall_clock.h"

namespace qel {
namespace {

constexpr double kSteps = 1000;  // of the shown range that a text tells apart
constexpr double kFirstSecond = -62135596800 + 86400.0, kLastSecond = 253402300799 - 86400.0;  // years 1 to 9999

std::string WithUnit(const std::string& number, const std::string& unit) {
    return unit.empty() ? number : number + " " + unit;
}

// The power of ten that is at most a thousandth of @p size, and no digit that a double of this value does not have.
double StepOf(double size, double value) {
    constexpr int kDigits = 15;
    if (!(size > 0) || !std::isfinite(value)) return 0;
    const double part = std::min(size, std::numeric_limits<double>::max()) / kSteps;
    const int least = ShortestDigits(std::fabs(value)).Exponent() - kDigits + 1;
    return Scaled(1, std::max(ShortestDigits(part).Exponent(), least));
}

double StepOf(const AxisPlaces& places, double value) {
    return StepOf(places.isLogarithmic ? std::fabs(value) : places.Length(), value);
}

// With the prefix that the axis has at its unit, or with its power of ten where that is shorter.
std::string TextOfNumber(const ChartAxis& axis, const AxisPlaces& places, double value) {
    const double step = StepOf(places, value);
    const ChartExponent kind = ExponentOf(axis);
    const int exponent = AxisExponent(std::max(std::fabs(places.low), std::fabs(places.high)), kind);
    if (exponent != 0 && axis.scale == ChartScale::kLinear) {
        const std::string number = NumberText(value, step, exponent), factor = FactorText(exponent, kind);
        const bool isPower = factor.starts_with("\u00D7");
        if (!isPower) return number + " " + factor + axis.unit;
        if (Characters(number + factor) < Characters(PlainText(value, step, 0)))
            return WithUnit(number + factor, axis.unit);
    }
    return WithUnit(NumberText(value, step, 0), axis.unit);
}

// A fraction of a second is shown where the range is short.
std::string TimeText(const ChartAxis& axis, double value, double step) {
    const WallClock clock(axis.clock);
    std::int64_t whole = static_cast<std::int64_t>(std::floor(value));
    int milliseconds = static_cast<int>(std::lround((value - std::floor(value)) * 1000));
    if (step >= 0.5 && milliseconds >= 500) ++whole;
    if (milliseconds == 1000) ++whole, milliseconds = 0;
    const std::int64_t wall = whole + clock.Offset(whole);
    const std::chrono::sys_seconds moment{std::chrono::seconds(wall)};
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(moment - day);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", int(date.year()), unsigned(date.month()),
                  unsigned(date.day()), int(time.hours().count()), int(time.minutes().count()),
                  int(time.seconds().count()));
    std::string written = text;
    if (step < 0.5) {
        std::snprintf(text, sizeof text, ".%03d", milliseconds);
        written += text;
    }
    return written + " " + clock.ZoneName(whole);
}

}  // namespace

std::string ValueText(const ChartAxis& axis, const AxisPlaces& places, double value) {
    if (axis.scale == ChartScale::kCategories) {
        const double nearest = std::round(value);
        const bool isName = nearest >= 0 && nearest < static_cast<double>(axis.categories.size());
        if (isName && nearest == value) return axis.categories[static_cast<std::size_t>(nearest)];
    }
    if (axis.scale == ChartScale::kTime && value >= kFirstSecond && value <= kLastSecond)
        return TimeText(axis, value, StepOf(places, 0));
    return TextOfNumber(axis, places, value);
}

std::string DistanceText(const ChartAxis& axis, const AxisPlaces& places, double distance) {
    if (axis.scale == ChartScale::kLinear) return TextOfNumber(axis, places, distance);
    return WithUnit(NumberText(distance, StepOf(places, distance), 0), UnitOfDistances(axis));
}

std::string FourDigits(double value, const std::string& unit) {
    return WithUnit(NumberText(value, StepOf(std::fabs(value), value), 0), unit);
}

std::string UnitOfDistances(const ChartAxis& axis) {
    return axis.scale == ChartScale::kTime && axis.unit.empty() ? "s" : axis.unit;
}

}  // namespace qel
