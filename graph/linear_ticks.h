#pragma once

#include "qellib10/graph/tick_choice.h"

namespace qel {

/// LinearTicks on any axis, also on a piece of a logarithmic one, and with breaks.
AxisTicks LinearTicksAt(const TickPlaces& places, ChartExponent exponent, const AxisSpace& space);

/// TimeTicks, also with breaks.
AxisTicks TimeTicksAt(const TickPlaces& places, ChartClock clock, const AxisSpace& space);

}  // namespace qel
