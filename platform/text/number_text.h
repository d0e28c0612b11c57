#pragma once

#include <string>

#include "qellib10/platform/export.h"

// Numbers as text in the platform's forms. The decimal sign is "." whatever the locale; infinities and NaN become inf
// and nan.
namespace qel {

/// At most this many decimals or columns are written: a number from a caller must not decide how much memory is used.
inline constexpr int kMaxColumns = 512;

/// Like "%.*f", all digits exact, but a value exactly between two texts is rounded away from zero: 0.125 with 2
/// decimals is 0.13. @p decimals is limited to 0 to kMaxColumns.
QELLIB10_INTERNAL_API std::string FixedText(double value, int decimals);

/// Fewer digits than a double has.
inline constexpr int kMaxExponentDecimals = 14;

/// Like "%.*E" with at least three digits of exponent, 1.235E+003, and with the same rule for ties. @p decimals is
/// limited to 0 to kMaxExponentDecimals.
std::string ExponentText(double value, int decimals);

/// Like "%.*G": the shorter of both forms, without trailing zeros, an exponent of at least two digits: 0.1, 1, 1E+15.
/// @p digits is limited to 1 to kMaxColumns.
std::string GeneralText(double value, int digits);

/// @p value cut toward zero; -2147483648 for NaN and for everything outside the range of int, like the processor's own
/// conversion.
int TruncatedToInt(double value) noexcept;

}  // namespace qel
