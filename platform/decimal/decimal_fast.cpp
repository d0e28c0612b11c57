#include "qellib10/platform/decimal/decimal_fast.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/decimal/decimal_access.h"

namespace qel {
namespace {

constexpr int kDigits = Decimal::kDigits;
constexpr Wide kEnd = WidePowerOfTen(kDigits);  // above all coefficients

struct Parts {
    explicit Parts(const Decimal& value) noexcept
        : coefficient(DecimalAccess::CoefficientOf(value)),
          exponent(DecimalAccess::ExponentOf(value)),
          isNegative(value.IsNegative()) {}
    Wide coefficient;
    int exponent;
    bool isNegative;
};

bool AreFinite(const Decimal& a, const Decimal& b) noexcept { return a.IsFinite() && b.IsFinite(); }
bool IsInRange(int exponent) noexcept { return exponent >= kLeastExponent && exponent <= kGreatestExponent; }

bool Give(bool isNegative, Wide coefficient, int exponent, Decimal& result) noexcept {
    if (!IsInRange(exponent)) return false;
    result = DecimalAccess::Finite(isNegative, coefficient, exponent);
    return true;
}

// Whether a magnitude goes up by one, of which @p twice is twice what is left, compared with a whole unit.
bool GoesUp(DecimalRounding rounding, Wide kept, std::strong_ordering twice, bool isExact) noexcept {
    if (isExact || rounding == DecimalRounding::kTowardZero) return false;
    if (rounding == DecimalRounding::kAwayFromZero || twice > 0) return true;
    return twice == 0 && (rounding == DecimalRounding::kHalfAwayFromZero || (kept & 1) != 0);
}

// Of a coefficient of more than 34 digits, half to even. @p hasMore: the exact coefficient is above this one, by less
// than one.
bool GiveShortened(bool isNegative, Wide coefficient, bool hasMore, int exponent, Decimal& result,
                   DecimalFlags& flags) noexcept {
    const int dropped = DigitsOf(coefficient) - kDigits;
    const Wide unit = WidePowerOfTen(dropped);
    auto [kept, rest] = Divided(coefficient, unit);
    std::strong_ordering twice = rest <=> unit / 2;
    if (twice == 0 && hasMore) twice = std::strong_ordering::greater;
    const bool isExact = rest == 0 && !hasMore;
    kept += GoesUp(DecimalRounding::kHalfEven, kept, twice, isExact) ? 1 : 0;
    exponent += dropped;
    if (kept == kEnd) {
        kept /= 10;
        ++exponent;
    }
    if (!Give(isNegative, kept, exponent, result)) return false;
    if (!isExact) flags.isInexact = true;
    return true;
}

bool GiveRounded(bool isNegative, Wide coefficient, bool hasMore, int exponent, Decimal& result,
                 DecimalFlags& flags) noexcept {
    if (coefficient < kEnd) return Give(isNegative, coefficient, exponent, result);
    return GiveShortened(isNegative, coefficient, hasMore, exponent, result, flags);
}

// Drops up to @p most zeros at the end. @return how many
int DropZeros(Wide& coefficient, int most) noexcept {
    int dropped = 0;
    for (const int step : {16, 8, 4, 2, 1}) {
        while (most - dropped >= step) {
            const WideQuotient divided = Divided(coefficient, WidePowerOfTen(step));
            if (divided.rest != 0) break;
            coefficient = divided.quotient;
            dropped += step;
        }
    }
    return dropped;
}

}  // namespace

bool AddFast(const Decimal& a, const Decimal& b, bool isSubtraction, Decimal& result, DecimalFlags& flags) noexcept {
    if (!AreFinite(a, b)) return false;
    Parts high(a), low(b);
    low.isNegative ^= isSubtraction;
    if (high.exponent < low.exponent) std::swap(high, low);
    if (high.coefficient == 0 && low.coefficient == 0)
        return Give(high.isNegative && low.isNegative, 0, low.exponent, result);
    bool hasMore = false;
    if (high.exponent > low.exponent && high.coefficient != 0) {
        const int shift = std::min(high.exponent - low.exponent, kWideDigits - DigitsOf(high.coefficient));
        high.coefficient *= WidePowerOfTen(shift);
        const int rest = high.exponent - low.exponent - shift;
        if (rest > 0) {
            const WideQuotient divided =
                rest < kDigits ? Divided(low.coefficient, WidePowerOfTen(rest)) : WideQuotient{0, low.coefficient};
            low.coefficient = divided.quotient;
            hasMore = divided.rest != 0;
            low.exponent += rest;
        }
    }
    if (high.isNegative == low.isNegative)
        return GiveRounded(high.isNegative, high.coefficient + low.coefficient, hasMore, low.exponent, result, flags);
    if (high.coefficient == low.coefficient) return Give(false, 0, low.exponent, result);
    if (high.coefficient < low.coefficient)
        return Give(low.isNegative, low.coefficient - high.coefficient, low.exponent, result);
    const Wide difference = high.coefficient - low.coefficient - (hasMore ? 1 : 0);
    return GiveRounded(high.isNegative, difference, hasMore, low.exponent, result, flags);
}

bool MultiplyFast(const Decimal& a, const Decimal& b, Decimal& result, DecimalFlags& flags) noexcept {
    if (!AreFinite(a, b)) return false;
    const Parts left(a), right(b);
    const bool isNegative = left.isNegative != right.isNegative;
    int exponent = left.exponent + right.exponent;
    if (BitsOf(left.coefficient) + BitsOf(right.coefficient) <= 128)
        return GiveRounded(isNegative, left.coefficient * right.coefficient, false, exponent, result, flags);
    const WideProduct product = Product(left.coefficient, right.coefficient);
    // The quotient has two digits more than fit, or one.
    const int dropped = std::max(DigitsOf(left.coefficient) + DigitsOf(right.coefficient) - kDigits - 2, 0);
    const WideQuotient divided = Divided(product, WidePowerOfTen(dropped));
    return GiveRounded(isNegative, divided.quotient, divided.rest != 0, exponent + dropped, result, flags);
}

bool DivideFast(const Decimal& a, const Decimal& b, Decimal& result, DecimalFlags& flags) noexcept {
    if (!AreFinite(a, b) || b.IsZero()) return false;
    const Parts left(a), right(b);
    const bool isNegative = left.isNegative != right.isNegative;
    const int exponent = left.exponent - right.exponent;
    if (left.coefficient == 0) return Give(isNegative, 0, exponent, result);
    // So that the quotient has all digits that fit, or one more.
    const int shift = kDigits + DigitsOf(right.coefficient) - DigitsOf(left.coefficient);
    const int first = std::max(shift - kDigits, 0);
    auto [quotient, rest] =
        Divided(Product(left.coefficient * WidePowerOfTen(first), WidePowerOfTen(shift - first)), right.coefficient);
    if (rest == 0) {
        const int dropped = DropZeros(quotient, shift);
        return GiveRounded(isNegative, quotient, false, exponent - shift + dropped, result, flags);
    }
    if (quotient >= kEnd) return GiveRounded(isNegative, quotient, true, exponent - shift, result, flags);
    quotient += GoesUp(DecimalRounding::kHalfEven, quotient, rest * 2 <=> right.coefficient, false) ? 1 : 0;
    if (!GiveRounded(isNegative, quotient, false, exponent - shift, result, flags)) return false;
    flags.isInexact = true;
    return true;
}

bool RemainderFast(const Decimal& a, const Decimal& b, Decimal& result) noexcept {
    if (!AreFinite(a, b) || b.IsZero()) return false;
    Parts left(a), right(b);
    const int exponent = std::min(left.exponent, right.exponent);
    for (Parts* const each : {&left, &right}) {
        if (each->exponent - exponent + DigitsOf(each->coefficient) > kWideDigits) return false;
        each->coefficient *= WidePowerOfTen(each->exponent - exponent);
    }
    const WideQuotient divided = Divided(left.coefficient, right.coefficient);
    return divided.quotient < kEnd && divided.rest < kEnd && Give(left.isNegative, divided.rest, exponent, result);
}

bool RoundToFast(const Decimal& a, int exponent, DecimalRounding rounding, Decimal& result,
                 DecimalFlags& flags) noexcept {
    if (!a.IsFinite() || !IsInRange(exponent)) return false;
    const Parts value(a);
    const int dropped = exponent - value.exponent;
    if (dropped <= 0) {
        const bool fits = value.coefficient == 0 || DigitsOf(value.coefficient) - dropped <= kDigits;
        const int added = value.coefficient == 0 ? 0 : -dropped;
        return fits && Give(value.isNegative, value.coefficient * WidePowerOfTen(added), exponent, result);
    }
    // Of far fewer digits than are dropped only that there are some counts.
    const Wide unit = WidePowerOfTen(std::min(dropped, kDigits + 1));
    auto [kept, rest] = Divided(value.coefficient, unit);
    const bool isExact = rest == 0;
    kept += GoesUp(rounding, kept, rest <=> unit / 2, isExact) ? 1 : 0;
    if (!Give(value.isNegative, kept, exponent, result)) return false;
    if (!isExact) flags.isInexact = true;
    return true;
}

bool ReduceFast(const Decimal& a, Decimal& result) noexcept {
    if (!a.IsFinite()) return false;
    Parts value(a);
    if (value.coefficient == 0) return Give(value.isNegative, 0, 0, result);
    const int dropped = DropZeros(value.coefficient, kDigits);
    return Give(value.isNegative, value.coefficient, value.exponent + dropped, result);
}

std::strong_ordering CompareFinite(const Decimal& a, const Decimal& b) noexcept {
    Parts left(a), right(b);
    if (left.coefficient == 0 || right.coefficient == 0) {
        if (left.coefficient == right.coefficient) return std::strong_ordering::equal;
        const bool isLess = left.coefficient == 0 ? !right.isNegative : left.isNegative;
        return isLess ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    if (left.isNegative != right.isNegative)
        return left.isNegative ? std::strong_ordering::less : std::strong_ordering::greater;
    if (left.isNegative) std::swap(left, right);
    const int leftEnd = left.exponent + DigitsOf(left.coefficient);
    const int rightEnd = right.exponent + DigitsOf(right.coefficient);
    if (leftEnd != rightEnd) return leftEnd <=> rightEnd;
    // Both then have as many digits as the one that has more.
    const int exponent = std::min(left.exponent, right.exponent);
    return left.coefficient * WidePowerOfTen(left.exponent - exponent) <=>
           right.coefficient * WidePowerOfTen(right.exponent - exponent);
}

}  // namespace qel
