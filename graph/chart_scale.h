#pragma once

#include <span>
#include <vector>

#include "qellib10/graph/axis_breaks.h"
#include "qellib10/graph/chart_snapshot.h"

namespace qel {

/// What each axis of the chart shows: the range in @p shown, or else from fixed ends and data, without its breaks.
std::vector<AxisParts> PartsOfAxes(const ChartSnapshot& data, const ChartRanges& shown);

/// The breaks that an axis has: its own, or those of the axis whose range it has.
std::span<const ChartBreak> BreaksOf(const Chart& chart, std::size_t axis);
/// Breaks of an axis that leave nothing out of it, although they are within what it shows: those beyond the eighth, of
/// an axis that has none, or around everything.
std::vector<ChartBreak> BreaksWithoutEffect(const Chart& chart, std::size_t axis, const AxisParts& parts);

/// Whether both axes exist, the first one horizontal, the second one vertical.
bool HasItsAxes(const Chart& chart, std::size_t xAxis, std::size_t yAxis);
inline bool HasItsAxes(const Chart& chart, const ChartSeries& series) {
    return HasItsAxes(chart, series.xAxis, series.yAxis);
}

inline bool IsHorizontal(const ChartAxis& axis) {
    return axis.side == ChartSide::kBottom || axis.side == ChartSide::kTop;
}

/// At most 8.
std::size_t AxisCount(const Chart& chart);

/// How many values have no place since their axis is logarithmic; points that are left out do not count.
std::size_t ValuesNotAboveZero(const ChartSnapshot& data);

/// Where a bar starts and ends, values of its vertical axis.
struct BarEnds {
    double from = 0;
    double to = 0;
};

/// Of each point of a series of bars: from its base to its value, or from where the stacked bars before it end at the
/// same x. Values below 0 have a stack of their own, downward; no bar hides another one.
std::vector<BarEnds> EndsOfBars(const ChartSnapshot& data, std::size_t index);

}  // namespace qel
