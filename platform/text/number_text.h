#pragma once

#include <string>

#include "qellib10/platform/export.h"

// Numbers as text in the platform's forms. The decimal sign is "." whatever the locale; infinities and NaN read inf and
// nan.
namespace qel {

/// More decimals or columns than this are not written: a number from a caller must not decide how much memory is used.
inline constexpr int kMaxColumns = 512;

/// As "%.*f", all digits exact, but a value exactly between two texts goes away from zero: 0.125 with 2 decimals is
/// 0.13. @p decimals is taken within 0 to kMaxColumns.
QELLIB10_INTERNAL_API std::string FixedText(double value, int decimals);

/// Fewer digits than a double has.
inline constexpr int kMaxExponentDecimals = 14;

/// As "%.*E" with at least three digits of exponent, 1.235E+003, and with the same rule for ties. @p decimals is taken
/// within 0 to kMaxExponentDecimals.
std::string ExponentText(double value, int decimals);

/// As "%.*G": the shorter of both forms, without trailing zeros, an exponent of at least two digits: 0.1, 1, 1E+15.
/// @p digits is taken within 1 to kMaxColumns.
std::string GeneralText(double value, int digits);

/// @p value cut toward zero; -2147483648 for NaN and for everything outside the range of int, which is what the
/// processor's own conversion gives.
int TruncatedToInt(double value) noexcept;

}  // namespace qel
