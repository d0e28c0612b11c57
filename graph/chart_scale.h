#pragma once

#include <vector>

#include "qellib10/graph/chart_snapshot.h"

namespace qel {

/// The range of each axis of the chart: the one in @p shown, or else from fixed ends and data.
std::vector<AxisRange> AxisRanges(const ChartSnapshot& data, const ChartRanges& shown);

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
