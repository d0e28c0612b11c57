#pragma once

#include <cmath>
#include <limits>

#include "qellib10/graph/graph_data.h"
#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// Surfaces take coordinates up to this far from 0.
inline constexpr int kFarthest = 65530;

/// One axis of a series on one side of the draw area: a distance from the area's edge for each value.
struct AxisScale {
    double origin = 0;   ///< the value at the edge
    double length = 1;   ///< units of the area, negative when the values grow toward the edge
    double divisor = 1;  ///< the range of values, above 0

    /// The order of the three steps is fixed: every drawing and every job has been made by it. NaN stays NaN.
    double Distance(double value) const noexcept { return (value - origin) * length / divisor; }
};

/// A range of values as a divisor. An axis whose ends are equal has none: what lies at the end stays there, everything
/// else is far outside.
inline double Divisor(double range) noexcept { return range == 0 ? std::numeric_limits<double>::min() : range; }

/// Cut toward zero and kept within the farthest coordinates; NaN is as far to the left or the top as can be.
inline int Pixels(double distance) noexcept {
    const double low = distance > -kFarthest ? distance : -kFarthest;
    return static_cast<int>(low < kFarthest ? low : kFarthest);
}

/// Where the points of a series lie on the surface.
struct DataScale {
    AxisScale x, y;
    POINT edge{0, 0};  ///< the corner of the area from which distances count

    POINT Map(const CGraphData& data) const noexcept {
        return {edge.x + Pixels(x.Distance(data.GetXData())), edge.y + Pixels(y.Distance(data.GetYData()))};
    }
    /// @return false for a point that has no place, because its value or its axis is not a number
    bool IsPlaced(const CGraphData& data) const noexcept {
        return !std::isnan(x.Distance(data.GetXData())) && !std::isnan(y.Distance(data.GetYData()));
    }
};

}  // namespace qel
