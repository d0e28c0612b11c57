#pragma once

#include <vector>

#include "qellib10/graph/chart.h"

namespace qel {

/// The range of each axis of the chart: the one in @p shown, or else from fixed ends and data.
std::vector<AxisRange> AxisRanges(const Chart& chart, const ChartRanges& shown);

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

/// The sum of what stacked series before @p index have at the x of each of its points; 0 for other series.
std::vector<double> StackedBelow(const Chart& chart, std::size_t index);

}  // namespace qel
