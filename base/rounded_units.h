#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#ifdef __x86_64__
#include <emmintrin.h>
#endif

// The quick form of the rounding rule, for the digits and sizes that results have. Everything else takes RoundByRule.
namespace qel {

/// Powers of ten that are doubles without loss.
inline constexpr std::array<double, 23> kPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
/// The doubles nearest to the negative powers, each with its negative beside it: what one unit of the last kept digit
/// is, by digits and sign.
inline constexpr auto kUnits = [] {
    constexpr std::array<double, 23> kPowers = {1e-0,  1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,
                                                1e-8,  1e-9,  1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15,
                                                1e-16, 1e-17, 1e-18, 1e-19, 1e-20, 1e-21, 1e-22};
    std::array<std::array<double, 2>, kPowers.size()> units{};
    for (std::size_t i = 0; i < units.size(); ++i) units[i] = {kPowers[i], -kPowers[i]};
    return units;
}();

/// From 0 to so many digits; one more than these is looked at.
inline constexpr int kMostQuickDigits = static_cast<int>(kPowersOfTen.size()) - 2;
constexpr bool IsQuick(int digits) { return static_cast<unsigned>(digits) <= kMostQuickDigits; }

/// What counts as "too large" below: tenths of a unit from 2^53 units on, where doubles are more than a unit apart.
inline constexpr std::uint64_t kTooLarge = (std::uint64_t{1} << 53) * 10;

/// @p value, not below 0, cut to a whole number; 2^63 from there on and for NaN.
inline std::uint64_t CutToWhole(double value) {
#ifdef __x86_64__
    return static_cast<std::uint64_t>(_mm_cvttsd_si64(_mm_set_sd(value)));  // its own answer, without a test
#else
    constexpr std::uint64_t kLimit = std::uint64_t{1} << 63;
    return value < static_cast<double>(kLimit) ? static_cast<std::uint64_t>(value) : kLimit;
#endif
}

/// |x| in tenths of a unit of the last kept digit, and what carries into that digit added: 5 to 9 tenths, none, or 1 to
/// 9 of them. A tenth of it, cut, is the rounded number in units. kTooLarge or more when |x| is too large or no number.
inline std::uint64_t RoundedTenths(double x, int digits, int mode) {
    const std::uint64_t carry = mode == 0 ? 5 : mode < 0 ? 0 : 9;
    // The absolute value is taken in between, so that no compiler fuses product and sum, which would round once.
    return CutToWhole(std::fabs(x * kPowersOfTen[static_cast<unsigned>(digits) + 1]) + 0.01) + carry;
}

/// A tenth of a number below kQuickTenths, cut: by one multiplication that needs no more than 64 bits.
inline constexpr std::uint64_t kQuickTenths = std::uint64_t{1} << 32;
constexpr std::int64_t QuickTenth(std::uint64_t tenths) { return static_cast<std::int64_t>(tenths * 0xCCCCCCCD >> 35); }

}  // namespace qel
