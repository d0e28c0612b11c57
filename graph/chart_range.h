#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "qellib10/graph/chart_navigator.h"
#include "qellib10/platform/export.h"

namespace qel {

/// A part of a series, between two values of its axis across.
struct ChartRange {
    std::size_t series = 0;
    double from = 0;
    double to = 0;

    bool operator==(const ChartRange&) const = default;
};

/// What a series has in a range. Points that are left out, and gaps, have no part in it. What cannot be said is not a
/// number.
struct ChartRangeValues {
    std::size_t count = 0;  ///< of points, those at the ends included
    double width = 0;       ///< of the range
    /// From the value at its start to that at its end: of lines at the ends themselves, between two points on the
    /// straight line; of points and bars from the one with the lowest x to the one with the highest.
    double difference = 0;
    double mean = 0;  ///< of the points, each counted once
    double minimum = 0, maximum = 0;
    /// Between the curve and 0, negative below it, whether x rises or falls; the curve is straight between its points,
    /// or steps. Nothing is added where there is a gap, and before the first and after the last point. Not a number for
    /// bars.
    double area = 0;
    double slope = 0;  ///< of the straight line with the least squares; at least 2 different x
};

/// @param from and @p to in any order; not finite: no points
QELLIB10_API ChartRangeValues ValuesInRange(const ChartSeries& series, double from, double to);

/// A value of a range for a reader: "mean" and "7.05 mV".
struct ChartRangeLine {
    std::string name;  ///< in the language of the string table (qel::SetTableLanguage)
    std::string value;
};

/// Width, difference, mean, minimum, maximum, area and slope with their units, without those that cannot be said;
/// nothing for a series that does not exist. Mean and the like have the decimals that the axis shows, area and slope
/// four digits.
QELLIB10_API std::vector<ChartRangeLine> LinesOfRange(const Chart& chart, const ChartNavigator& navigator,
                                                      const ChartRange& range);

}  // namespace qel
