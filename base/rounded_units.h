#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

// The quick form of the rounding rule, for the digits and sizes that results have. Everything else takes RoundByRule.
namespace qel {

/// Powers of ten that are doubles without loss.
inline constexpr std::array<double, 23> kPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
/// The doubles nearest to the negative powers.
inline constexpr std::array<double, 23> kNegativePowersOfTen = {1e-0,  1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7,
                                                                1e-8,  1e-9,  1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15,
                                                                1e-16, 1e-17, 1e-18, 1e-19, 1e-20, 1e-21, 1e-22};

/// One digit more than these is looked at.
inline constexpr int kMostQuickDigits = static_cast<int>(kPowersOfTen.size()) - 2;

/// |x| rounded, in units of the last kept digit; nothing when @p digits is not within 0 to kMostQuickDigits or |x| is
/// too large for 64 bits or no number.
inline std::optional<std::int64_t> RoundedUnits(double x, int digits, int mode) {
    if (static_cast<unsigned>(digits) > kMostQuickDigits) return std::nullopt;
    const double scaled = std::fabs(x * kPowersOfTen[static_cast<unsigned>(digits) + 1]);
    if (!(scaled < 9223372036854775808.0)) return std::nullopt;
    // What carries into the last kept digit: 5 to 9, nothing, or 1 to 9 of the first dropped one.
    const std::uint64_t carry = mode == 0 ? 5 : mode < 0 ? 0 : 9;
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(scaled + 0.01) + carry) / 10);
}

}  // namespace qel
