#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "qellib10/platform/export.h"

// Numbers read from the start of a text, like atoi and atof of the platform: blanks (09-0D, 20), one sign, digits; the
// rest is ignored. Independent of the locale.
namespace qel {

/// The whole number at the start of @p text, 0 without digits; outside the type's range its limit.
QELLIB10_INTERNAL_API std::int64_t ScanInteger(std::string_view text) noexcept;

/// @p value limited to the range of int.
QELLIB10_INTERNAL_API int ClampToInt(std::int64_t value) noexcept;

struct ScannedNumber {
    double value = 0;
    std::size_t length = 0;  ///< bytes of the number, leading blanks included; 0 if there is none
};

/// The number at the start of @p text: digits with at most one ".", then optionally an exponent after e, E, d or D. No
/// hexadecimal digits, no names for infinity. Too large gives infinity, too small 0, with the sign.
ScannedNumber ScanNumber(std::string_view text);

}  // namespace qel
