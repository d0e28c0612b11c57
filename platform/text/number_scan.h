#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "qellib10/platform/export.h"

// Numbers read from the beginning of a text, as atoi and atof of the platform read them: blanks (09-0D, 20), one sign,
// digits; what follows is not looked at. The locale has no say.
namespace qel {

/// The whole number that @p text begins with, 0 without digits; beyond the range of the type its last value.
QELLIB10_INTERNAL_API std::int64_t ScanInteger(std::string_view text) noexcept;

/// @p value kept within the range of int.
QELLIB10_INTERNAL_API int ClampToInt(std::int64_t value) noexcept;

struct ScannedNumber {
    double value = 0;
    std::size_t length = 0;  ///< bytes that belong to the number, leading blanks included; 0 when there is none
};

/// The number that @p text begins with: digits with at most one ".", then perhaps an exponent behind e, E, d or D. No
/// hexadecimal digits, no names for infinity. Too large gives an infinity, too small 0, with the sign.
ScannedNumber ScanNumber(std::string_view text);

}  // namespace qel
