#pragma once

#include <vector>

#include "qellib10/graph/chart.h"

namespace qel {

/// A stripe of the plot between two breaks of an axis.
struct PlotStripe {
    ChartBox box;
    AxisPart part;
};

/// From the low end of the axis on; without breaks the whole plot, else stripes that have a size.
std::vector<PlotStripe> StripesOf(const ChartBox& plot, const AxisPlaces& places, bool isHorizontal);

/// What the gaps of an axis leave of the way from one of its places to another, which may be outside the plot.
struct AxisWay {
    double from, to;
};
std::vector<AxisWay> WithoutGaps(const AxisPlaces& places, const AxisWay& way);

/// A part of the plot without a break: a series is drawn in each cell of its axes, and cut at its edges.
struct ChartCell {
    ChartBox box;
    AxisPart x, y;
};

std::vector<ChartCell> CellsOf(const ChartBox& plot, const AxisPlaces& x, const AxisPlaces& y);

/// What both boxes have; its right or lower edge may be before the other one.
ChartBox Common(const ChartBox& one, const ChartBox& other);
/// The box and @p by around it.
ChartBox Grown(const ChartBox& box, double by);

}  // namespace qel
