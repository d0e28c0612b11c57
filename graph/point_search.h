#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "qellib10/graph/axis_places.h"
#include "qellib10/graph/chart.h"
#include "qellib10/graph/point_view.h"

namespace qel {

/// Points by their places in a drawing; of points that rise only those nearby are read.
struct PointSearch {
    const PointView& points;
    const AxisPlaces& x;
    const AxisPlaces& y;

    /// The first of the points, without gaps, whose place across is nearest to @p across.
    std::optional<std::size_t> Nearest(double across) const;
    /// From the first to the last point, not included, that may be between two places across.
    std::pair<std::size_t, std::size_t> Across(double from, double to) const;
    /// Those in a box, edges included.
    std::vector<std::size_t> In(const ChartBox& box) const;

private:
    bool IsGapAt(std::size_t i) const;
    double DistanceOf(std::size_t i, double across) const;
    std::optional<std::size_t> NearestRead(double across) const;
    std::optional<std::size_t> NearestOfRising(double across) const;
};

}  // namespace qel
