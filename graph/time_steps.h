#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "qellib10/graph/axis_ticks.h"
#include "qellib10/graph/wall_clock.h"

namespace qel {

/// A step of calendars and clocks: milliseconds up to 12 hours, days, or months.
struct TimeStep {
    enum Unit { kMilliseconds, kDays, kMonths };

    Unit unit;
    std::int64_t count;
    Unit minorUnit;
    std::int64_t minorCount;  ///< 0 without minor ticks

    /// About, in seconds.
    double Length() const;
    TimeStep Minor() const { return {minorUnit, minorCount, minorUnit, 0}; }
};

/// All of them, the shortest one first.
std::span<const TimeStep> TimeStepTable();

/// Moments of a step within low to high, seconds since 1970 in the years 1 to 9999; none if there are more than @p
/// most.
std::vector<double> TimesOf(const TimeStep& step, double low, double high, const WallClock& clock, std::size_t most);

/// Texts for ticks at these times, and what they have in common. @p times is not empty.
AxisTicks TimesWithTexts(const TimeStep& step, const std::vector<double>& times, const WallClock& clock);

}  // namespace qel
