#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <limits>

#include "qellib10/graph/graph_data.h"
#include "qellib10/platform/drawing/geometry.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qel {

/// The largest coordinates that surfaces accept, in either direction.
inline constexpr int kFarthest = 65530;

/// A range of values as a divisor. An axis whose ends are equal has none: a value at the end stays there, all others
/// are far outside.
inline double Divisor(double range) noexcept { return range == 0 ? std::numeric_limits<double>::min() : range; }

/// Cut toward zero and limited to the farthest coordinates; NaN is at the farthest left or top.
inline int Pixels(double distance) noexcept {
    const double low = distance > -kFarthest ? distance : -kFarthest;
    return static_cast<int>(low < kFarthest ? low : kFarthest);
}

/// Maps the values of a series to the surface: for x and y a distance from an edge of the draw area.
struct DataScale {
    enum Axis : unsigned { kX, kY };

    std::array<double, 2> origin{0, 0};   ///< the value at the edge
    std::array<double, 2> length{1, 1};   ///< units of the area, negative when the values grow toward the edge
    std::array<double, 2> divisor{1, 1};  ///< the range of values, above 0
    POINT edge{0, 0};

    /// The order of the three steps is fixed: all existing drawings and jobs were made with it. NaN stays NaN.
    double Distance(Axis axis, double value) const noexcept {
        return (value - origin[axis]) * length[axis] / divisor[axis];
    }
    int MapY(double value) const noexcept { return edge.y + Pixels(Distance(kY, value)); }

    /// The position of a point.
    /// @return false for a point without a position, because its value or its axis is NaN; @p at is then what Pixels
    /// returns for NaN
    bool Map(const CGraphData& data, POINT& at) const noexcept {
#if defined(__SSE2__)
        // Both numbers at once, with the same steps as above.
        const auto pair = [](const std::array<double, 2>& both) { return _mm_loadu_pd(both.data()); };
        const __m128d value = _mm_set_pd(data.GetYData(), data.GetXData());
        const __m128d distance = _mm_div_pd(_mm_mul_pd(_mm_sub_pd(value, pair(origin)), pair(length)), pair(divisor));
        const __m128d kept = _mm_min_pd(_mm_max_pd(distance, _mm_set1_pd(-kFarthest)), _mm_set1_pd(kFarthest));
        const __m128i place = _mm_add_epi32(_mm_cvttpd_epi32(kept), _mm_set_epi32(0, 0, edge.y, edge.x));
        at = std::bit_cast<POINT>(_mm_cvtsi128_si64(place));
        return _mm_movemask_pd(_mm_cmpunord_pd(distance, distance)) == 0;
#else
        const double x = Distance(kX, data.GetXData()), y = Distance(kY, data.GetYData());
        at = {edge.x + Pixels(x), edge.y + Pixels(y)};
        return !std::isnan(x) && !std::isnan(y);
#endif
    }
};

}  // namespace qel
