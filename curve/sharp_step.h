#pragma once

#include <optional>

#include "qellib10/curve/step_search.h"

namespace qel {

/// The step of a curve by the slopes between its readings alone. The place is the top of a parabola through three
/// values, made of the steepest slope and its two neighbours. The values are reciprocal squares if the next slopes fall
/// with the distance from the step, as in a titration with a glass or silver electrode, otherwise logarithms. Where a
/// step is so sharp that few readings lie in it, no cubic polynomial follows it, but this does; noise moves it more.
/// @param direction 1 for a rising curve, -1 for a falling one
/// @param noise standard deviation of a reading
/// @return nothing where the steepest slope is at an end, or one of many in a step that is not sharp; an infinite error
/// where only the steepest slope is clear of the noise, so that the place is a guess
std::optional<Step> SharpStep(const CurvePoints& points, double direction, double noise);

}  // namespace qel
