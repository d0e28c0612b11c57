#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "qellib10/base/q_variant.h"

// CQVariant::fround in whole units, for texts.
namespace qel {

/// @p value, not below 0, cut to a whole number; 2^63 for values from there on and for NaN.
inline std::uint64_t CutToWhole(double value) {
#ifdef __SSE2__
    // the instruction's own result, without a test
    return static_cast<std::uint64_t>(_mm_cvttsd_si64(_mm_set_sd(value)));
#else
    constexpr std::uint64_t kLimit = std::uint64_t{1} << 63;
    return value < static_cast<double>(kLimit) ? static_cast<std::uint64_t>(value) : kLimit;
#endif
}

/// |x| in tenths of a unit of the last kept digit, plus what carries into that digit: for 5 to 9 tenths, for none, or
/// for 1 to 9 of them. A tenth of it, cut, is the rounded number in units. 2^63 or more if |x| is too large or is NaN.
/// @param digits 0 to kMaxExactDigits
inline std::uint64_t RoundedTenths(double x, int digits, int mode) {
    const std::uint64_t carry = mode == 0 ? 5 : mode < 0 ? 0 : 9;
    // The absolute value is taken in between, so that no compiler fuses product and sum, which would round only once.
    return CutToWhole(std::fabs(x * kPowersOfTen[static_cast<std::size_t>(digits) + 1]) + 0.01) + carry;
}

}  // namespace qel
