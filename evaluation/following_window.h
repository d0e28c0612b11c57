#pragma once

#include "qellib10/evaluation/curve_data.h"

namespace qel {

/// The widest of the windows of at most @p window points, at least two more than the degree, whose polynomials follow
/// the readings around each of the points from @p first to @p last: they scatter about them as their noise does. A
/// wider window would flatten what is there.
/// @return 0 where none does: the curve bends more between its readings than a polynomial shows
std::size_t FollowingWindow(const CurveData& data, std::size_t first, std::size_t last, std::size_t window,
                            std::size_t degree);

}  // namespace qel
