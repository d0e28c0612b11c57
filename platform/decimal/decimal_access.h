#pragma once

#include <cstdint>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/decimal/wide_integer.h"

namespace qel {

/// The magnitudes of decimal128's numbers that have all of their digits.
inline constexpr int kGreatestMagnitude = 6144, kLeastMagnitude = -6143;
/// Exponents of numbers that are in range whatever their digits are.
inline constexpr int kGreatestExponent = kGreatestMagnitude - Decimal::kDigits + 1, kLeastExponent = kLeastMagnitude;

/// The parts of a number.
struct DecimalAccess {
    static Wide CoefficientOf(const Decimal& value) noexcept { return WideOf(value.m_high, value.m_low); }
    static std::int32_t ExponentOf(const Decimal& value) noexcept { return value.m_exponent; }
    static std::uint8_t BitsOf(const Decimal& value) noexcept { return value.m_bits; }

    static Decimal Made(std::uint8_t bits, Wide coefficient, std::int32_t exponent) noexcept {
        Decimal value;
        value.m_low = LowOf(coefficient);
        value.m_high = HighOf(coefficient);
        value.m_exponent = exponent;
        value.m_bits = bits;
        return value;
    }
    static Decimal Finite(bool isNegative, Wide coefficient, std::int32_t exponent) noexcept {
        return Made(isNegative ? Decimal::kNegative : std::uint8_t{0}, coefficient, exponent);
    }
};

}  // namespace qel
