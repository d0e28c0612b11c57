#include "qellib10/platform/decimal/decimal.h"

#include <algorithm>

#include "qellib10/platform/decimal/dec_digits.h"
#include "qellib10/platform/decimal/decimal_fast.h"

namespace qel {
namespace {

static_assert(sizeof(Decimal) == 24);

// What is at the end of the range, infinite or no number is left to decNumber.
using Operation = decNumber* (*)(decNumber*, const decNumber*, const decNumber*, decContext*);

Decimal Slowly(Operation operation, const Decimal& a, const Decimal& b, DecimalFlags& flags,
               rounding mode = DEC_ROUND_HALF_EVEN) noexcept {
    decContext context = kDecimalContext;
    context.round = mode;
    DecNumber result;
    operation(result.Get(), NumberOf(a).Get(), NumberOf(b).Get(), &context);
    AddFlags(flags, context.status);
    return DecimalOf(result.Get());
}

rounding ModeOf(DecimalRounding rounding) noexcept {
    switch (rounding) {
        case DecimalRounding::kHalfAwayFromZero:
            return DEC_ROUND_HALF_UP;
        case DecimalRounding::kTowardZero:
            return DEC_ROUND_DOWN;
        case DecimalRounding::kAwayFromZero:
            return DEC_ROUND_UP;
        default:
            return DEC_ROUND_HALF_EVEN;
    }
}

// Far past decimal128's exponents, so that sums with it cannot overflow.
int Bounded(int exponent) noexcept { return std::clamp(exponent, -20'000, 20'000); }

std::uint64_t MagnitudeOf(std::int64_t value) noexcept {
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
}

}  // namespace

Decimal::Decimal(std::int64_t value) noexcept
    : m_low(MagnitudeOf(value)), m_bits(value < 0 ? kNegative : std::uint8_t{0}) {}

Decimal Decimal::NotANumber() noexcept { return DecimalAccess::Made(DECNAN, 0, 0); }

Decimal Decimal::Scaled(std::int64_t coefficient, int exponent, DecimalFlags& flags) noexcept {
    const Decimal value = DecimalAccess::Finite(coefficient < 0, MagnitudeOf(coefficient), Bounded(exponent));
    if (value.m_exponent >= kLeastExponent && value.m_exponent <= kGreatestExponent) return value;
    decContext context = kDecimalContext;
    DecNumber result;
    decNumberPlus(result.Get(), NumberOf(value).Get(), &context);
    AddFlags(flags, context.status);
    return DecimalOf(result.Get());
}

int Decimal::Digits() const noexcept { return DigitsOf(DecimalAccess::CoefficientOf(*this)); }

bool Decimal::IsInteger() const noexcept {
    return IsFinite() && (IsZero() || Exponent() >= 0 || Reduced().Exponent() >= 0);
}

Decimal Decimal::operator-() const noexcept {
    Decimal value = *this;
    value.m_bits ^= kNegative;
    return value;
}

Decimal Decimal::Absolute() const noexcept {
    Decimal value = *this;
    value.m_bits &= static_cast<std::uint8_t>(~kNegative);
    return value;
}

Decimal Decimal::Reduced() const noexcept {
    Decimal result;
    if (ReduceFast(*this, result)) return result;
    decContext context = kDecimalContext;
    DecNumber reduced;
    decNumberReduce(reduced.Get(), NumberOf(*this).Get(), &context);
    return DecimalOf(reduced.Get());
}

Decimal Add(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    Decimal result;
    if (!AddFast(a, b, false, result, flags)) result = Slowly(decNumberAdd, a, b, flags);
    return result;
}
Decimal Subtract(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    Decimal result;
    if (!AddFast(a, b, true, result, flags)) result = Slowly(decNumberSubtract, a, b, flags);
    return result;
}
Decimal Multiply(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    Decimal result;
    if (!MultiplyFast(a, b, result, flags)) result = Slowly(decNumberMultiply, a, b, flags);
    return result;
}
Decimal Divide(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    Decimal result;
    if (!DivideFast(a, b, result, flags)) result = Slowly(decNumberDivide, a, b, flags);
    return result;
}
Decimal Remainder(const Decimal& a, const Decimal& b, DecimalFlags& flags) noexcept {
    Decimal result;
    if (!RemainderFast(a, b, result)) result = Slowly(decNumberRemainder, a, b, flags);
    return result;
}

Decimal SquareRoot(const Decimal& a, DecimalFlags& flags) noexcept {
    decContext context = kDecimalContext;
    DecNumber result;
    decNumberSquareRoot(result.Get(), NumberOf(a).Get(), &context);
    AddFlags(flags, context.status);
    return DecimalOf(result.Get());
}

Decimal RoundTo(const Decimal& a, int exponent, DecimalRounding rounding, DecimalFlags& flags) noexcept {
    Decimal result;
    if (RoundToFast(a, exponent, rounding, result, flags)) return result;
    const Decimal last = DecimalAccess::Finite(false, 1, Bounded(exponent));
    return Slowly(decNumberQuantize, a, last, flags, ModeOf(rounding));
}

std::partial_ordering operator<=>(const Decimal& a, const Decimal& b) noexcept {
    if (a.IsNan() || b.IsNan()) return std::partial_ordering::unordered;
    if (a.IsFinite() && b.IsFinite()) return CompareFinite(a, b);
    const auto side = [](const Decimal& value) { return value.IsFinite() ? 0 : value.IsNegative() ? -1 : 1; };
    return side(a) <=> side(b);
}

bool operator==(const Decimal& a, const Decimal& b) noexcept { return (a <=> b) == 0; }

}  // namespace qel
