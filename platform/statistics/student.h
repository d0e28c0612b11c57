#pragma once

#include "qellib10/platform/export.h"

namespace qel {

/// The probability that a Student variable with @p degreesOfFreedom, above 0 and not necessarily whole, is at most
/// @p t; infinitely many make it normal. NaN where an argument is NaN or the degrees of freedom are not above 0.
QELLIB10_API double StudentDistribution(double t, double degreesOfFreedom);

/// The coverage factor k for a coverage probability: a Student variable is between -k and k with @p probability (GUM
/// G.3). 2.000 for 0.9545 and infinitely many degrees of freedom.
/// @return NaN where @p probability is not between 0 and 1, or the degrees of freedom are not above 0
QELLIB10_API double CoverageFactor(double probability, double degreesOfFreedom);

}  // namespace qel
