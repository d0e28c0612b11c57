#pragma once

#include "qellib10/graph/tick_choice.h"

namespace qel {

/// LinearTicks on any axis, also on a piece of a logarithmic one.
AxisTicks LinearTicksAt(const TickPlaces& places, ChartExponent exponent, const AxisSpace& space);

}  // namespace qel
