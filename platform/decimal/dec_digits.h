#pragma once

// decNumber with more digits than its type has: it counts on the units of a number continuing after those that the type
// names, as its manual describes.
#include <array>
#include <cstddef>
#include <cstdint>

#define DECNUMDIGITS 15
#include <qellib10/decnumber/decNumber.h>
#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/decimal/decimal_access.h"

namespace qel {

/// Fits a number of up to @p kDigits digits.
template <int kDigits> struct DecDigits {
    decNumber number = {1, 0, 0, {}};
    std::array<std::uint16_t, (kDigits + DECDPUN - 1) / DECDPUN - DECNUMUNITS> more = {};

    decNumber* Get() noexcept { return &number; }
    const decNumber* Get() const noexcept { return &number; }
};

using DecNumber = DecDigits<Decimal::kDigits>;

/// decimal128's exponents; half to even.
constexpr decContext kDecimalContext = {
    Decimal::kDigits, kGreatestMagnitude, kLeastMagnitude, DEC_ROUND_HALF_EVEN, 0, 0, 1};

/// @p value in decNumber's form.
DecNumber NumberOf(const Decimal& value) noexcept;
/// @p number has at most 34 digits.
Decimal DecimalOf(const decNumber* number) noexcept;

inline void AddFlags(DecimalFlags& flags, std::uint32_t status) noexcept {
    flags.isInexact |= (status & DEC_Inexact) != 0;
    flags.isInvalid |= (status & (DEC_IEEE_754_Invalid_operation)) != 0;
    flags.isDividedByZero |= (status & DEC_Division_by_zero) != 0;
    flags.isTooLarge |= (status & DEC_Overflow) != 0;
    flags.isTooSmall |= (status & DEC_Underflow) != 0;
}

}  // namespace qel
