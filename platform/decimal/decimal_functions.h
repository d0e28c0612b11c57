#pragma once

#include "qellib10/platform/decimal/decimal.h"

namespace qel {

// Functions of decimal numbers. Each result is the exact one rounded once to 34 digits, half to even (correctly
// rounded), as those of MPFR are. Where the first digits do not decide, more are computed.

/// e to the power @p a
QELLIB10_API Decimal Exponential(const Decimal& a, DecimalFlags& flags);
/// The natural logarithm. Of 0 it is -Infinity, of a negative number invalid.
QELLIB10_API Decimal NaturalLogarithm(const Decimal& a, DecimalFlags& flags);
/// The logarithm to base 10. Exact for powers of ten. Of 0 it is -Infinity, of a negative number invalid.
QELLIB10_API Decimal DecimalLogarithm(const Decimal& a, DecimalFlags& flags);
/// The logarithm to base 2. Exact for powers of two. Of 0 it is -Infinity, of a negative number invalid.
QELLIB10_API Decimal BinaryLogarithm(const Decimal& a, DecimalFlags& flags);
/// @p base to the power @p exponent. Exact where the exact result has at most 34 digits; a
/// power of 1 is 1. Invalid for 0 to the power 0
/// and for a negative base to a power that is no whole number.
QELLIB10_API Decimal Power(const Decimal& base, const Decimal& exponent, DecimalFlags& flags);

}  // namespace qel
