#pragma once

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/decimal/wide_integer.h"

namespace qel {

// Operations on finite numbers whose result is within decimal128's range, as integers of 128 and 256 bits. They are
// those of the General Decimal Arithmetic, digit by digit as decNumber has them: an exact result has the exponent that
// is nearest to the preferred one, all others have 34 digits.
//
// Each returns false, and changes nothing, where an operand or the result is no such number.

bool AddFast(const Decimal& a, const Decimal& b, bool isSubtraction, Decimal& result, DecimalFlags& flags) noexcept;
bool MultiplyFast(const Decimal& a, const Decimal& b, Decimal& result, DecimalFlags& flags) noexcept;
bool DivideFast(const Decimal& a, const Decimal& b, Decimal& result, DecimalFlags& flags) noexcept;
bool RemainderFast(const Decimal& a, const Decimal& b, Decimal& result) noexcept;
bool RoundToFast(const Decimal& a, int exponent, DecimalRounding rounding, Decimal& result,
                 DecimalFlags& flags) noexcept;
bool ReduceFast(const Decimal& a, Decimal& result) noexcept;

/// Of two finite numbers.
std::strong_ordering CompareFinite(const Decimal& a, const Decimal& b) noexcept;

}  // namespace qel
