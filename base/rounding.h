#pragma once

#include "qellib10/platform/export.h"

namespace qel {

/// The power of ten that rounding multiplies by: the double nearest to it for exponents -22 to 22, else pow's.
double PowerOfTen(int exponent);

/// The rule of CQVariant::fround step by step. RoundedUnits (rounded_units.h) is its quick form for 0 to 21 digits and
/// gives the same doubles.
QELLIB10_API double RoundByRule(double x, int digits, int mode);

}  // namespace qel
