#pragma once

#include "qellib10/platform/statistics/philox.h"

namespace qel {

// Random numbers of mean 0. The rectangular and the triangular one, and the normal one, have the standard deviation 1.

/// By the ziggurat of Marsaglia and Tsang (Journal of Statistical Software 5(8), 2000) with 256 layers.
double NormalDeviate(Philox& stream);
double RectangularDeviate(Philox& stream);
double TriangularDeviate(Philox& stream);

/// Student's t: a normal deviate over the root of a chi-squared one per degree of freedom (Marsaglia and Tsang, ACM
/// TOMS 26(3), 2000). Its standard deviation is above 1, and infinite for 2 degrees of freedom or less.
/// @param degreesOfFreedom 1 or more, finite
double StudentDeviate(Philox& stream, double degreesOfFreedom);

}  // namespace qel
