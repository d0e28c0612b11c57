#pragma once

#include <vector>

#include "qellib10/curve/points.h"

namespace qel {

/// The standard deviation of a reading, estimated from the curve itself (at least 4 points), where any of the points
/// may be strays. Never too small. Too large if a curve has few points and is steep everywhere.
double RoughNoise(const CurvePoints& points);

/// The same of points without strays, from the levels before and after the step alone: a step that few points lie in
/// is sharp, not noisy. As RoughNoise where the levels have too few points.
double Noise(const CurvePoints& points);

/// The same from neighbouring readings at one volume, as they are taken while an electrode settles: what they differ by
/// is noise alone. 0 where there are too few of them.
/// @param readings in the order of their volumes
/// @param strays which of them are left out
double RepeatNoise(const TitrationCurve& readings, const std::vector<bool>& strays);

}  // namespace qel
