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

/// Moments of a step within the parts of an axis, seconds since 1970 in the years 1 to 9999; none if there are more
/// than
/// @p most.
std::vector<double> TimesOf(const TimeStep& step, std::span<const AxisRange> parts, const WallClock& clock,
                            std::size_t most);

/// Texts for ticks at these times, and what they have in common. @p times is not empty.
/// @param hasBreaks the first day has its date as well: across a break it cannot be told from the next one
AxisTicks TimesWithTexts(const TimeStep& step, const std::vector<double>& times, const WallClock& clock,
                         bool hasBreaks);

}  // namespace qel
