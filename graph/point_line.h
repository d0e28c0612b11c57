#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "qellib10/graph/axis_places.h"
#include "qellib10/graph/point_view.h"
#include "qellib10/graph/reduced_line.h"

namespace qel {

/// A line through points of a series, which is reduced to what can be seen: of the points that follow each other in a
/// column the first, the lowest and the highest in their order, and the last.
struct PointLine {
    static constexpr double kFine = 16;  ///< columns of a device unit that lose nothing that can be seen

    const PointView& points;
    const AxisPart& x;
    const AxisPart& y;
    double columnsPerUnit = kFine;
    bool isSteps = false;                       ///< each value holds until the next one
    std::span<const double> heights = {};       ///< of all points, in place of their y
    std::span<const std::size_t> leftOut = {};  ///< points that the line leads past, in their order

    /// Of the points from @p begin up to, but not including, @p end.
    std::vector<ShapePoint> Reduced(std::size_t begin, std::size_t end) const;
    /// By reading each point.
    std::vector<ShapePoint> ReducedPlain(std::size_t begin, std::size_t end) const;
    /// The same line, in a time that depends on the columns and hardly on the points: of blocks that are wholly in a
    /// column only the summary is read.
    std::vector<ShapePoint> ReducedRising(std::size_t begin, std::size_t end) const;
    /// Whether the points rise and have their own heights, and both axes tell values apart.
    bool IsRising() const;
};

}  // namespace qel
