#pragma once

#include "qellib10/platform/export.h"

namespace qel {

/// The power of ten that rounding multiplies by: the nearest double for exponents -22 to 22, else the result of pow.
QELLIB10_INTERNAL_API double PowerOfTen(int exponent);

/// |x| in tenths of the last of @p digits places, 0 or more: the product that CQVariant::fround rounds.
double InTenths(double x, int digits);

}  // namespace qel
