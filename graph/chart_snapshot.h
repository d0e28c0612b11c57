#pragma once

#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/graph/point_view.h"

namespace qel {

/// A chart with the points that its series had when the drawing began, so that all parts of the picture have the same
/// ones while others are appended to its stores.
struct ChartSnapshot {
    explicit ChartSnapshot(const Chart& shown);

    const Chart& chart;
    std::vector<PointView> points;  ///< of each series
};

}  // namespace qel
