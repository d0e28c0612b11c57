#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/curve/points.h"

namespace qel {

inline constexpr std::size_t kLongestStray = 3;  // as many neighbouring readings may be strays

/// Marks the readings that leave the curve and come back to it: those further than @p tolerance from the median of the
/// 7 around them. That median is the reading itself wherever a curve rises or falls steadily, however steep its step
/// is. Fewer are compared near both ends.
/// @param signal in the order of the volumes
std::vector<bool> StrayReadings(const std::vector<double>& signal, double tolerance);

/// Whether @p points look like one step of a clean curve: none goes back by more than @p tolerance, and the slope has
/// no valley of at most kLongestStray readings in it, as strays at a step leave it.
/// @param direction 1 for a rising curve, -1 for a falling one
/// @param noise standard deviation of a reading
bool IsOneStep(const CurvePoints& points, double direction, double noise, double tolerance);

}  // namespace qel
