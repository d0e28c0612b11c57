#include "qellib10/platform/decimal/wide_integer.h"

namespace qel {
namespace {

struct Digit {
    std::uint64_t quotient;
    Wide rest;
};

// One digit to base 2^64 of (rest * 2^64 + next) / divisor, where rest is below divisor and the upper bit of divisor is
// set (Knuth, The Art of Computer Programming, volume 2, 4.3.1, algorithm D).
Digit NextDigit(Wide rest, std::uint64_t next, Wide divisor) {
    const std::uint64_t top = HighOf(divisor);
    Wide estimate = rest / top;
    Wide left = rest - estimate * top;
    while (HighOf(estimate) != 0 || estimate * LowOf(divisor) > WideOf(LowOf(left), next)) {
        --estimate;
        left += top;
        if (HighOf(left) != 0) break;
    }
    // What is above 128 bits cancels.
    return {LowOf(estimate), WideOf(LowOf(rest), next) - estimate * divisor};
}

}  // namespace

WideQuotient Divided(const WideProduct& value, Wide divisor) {
    if (value.high == 0) return Divided(value.low, divisor);
    const int shift = 128 - BitsOf(divisor);
    divisor <<= shift;
    const Wide high = shift == 0 ? value.high : (value.high << shift) | (value.low >> (128 - shift));
    const Wide low = value.low << shift;
    const Digit first = NextDigit(high, HighOf(low), divisor);
    const Digit second = NextDigit(first.rest, LowOf(low), divisor);
    return {WideOf(first.quotient, second.quotient), second.rest >> shift};
}

}  // namespace qel
