#include "qellib10/platform/decimal/decimal_functions.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "qellib10/platform/decimal/dec_digits.h"

namespace qel {
namespace {

// Where 1,000 digits do not decide, the exact result has at most 35 digits: all others differ from such a number
// earlier. Powers that do are found before.
constexpr int kFirstDigits = 50;
constexpr int kMostDigits = 1000;

// decNumber's functions are right to one unit in the last place, and powers to ten.
constexpr int kUnitsOfError = 20;

using ManyDigits = DecDigits<kMostDigits>;

decContext WideContext(int digits) noexcept {
    return {digits, DEC_MAX_MATH, -DEC_MAX_MATH, DEC_ROUND_HALF_EVEN, 0, 0, 0};
}

Decimal Rounded(const decNumber* exact, std::uint32_t before, DecimalFlags& flags) noexcept {
    decContext context = kDecimalContext;
    DecNumber rounded;
    decNumberPlus(rounded.Get(), exact, &context);
    AddFlags(flags, context.status | before);
    return DecimalOf(rounded.Get());
}

// Whether all numbers as near to the computed one as its error are rounded to the same.
bool IsDecided(const ManyDigits& computed, int digits) noexcept {
    decContext context = WideContext(digits + 3);
    ManyDigits error, edge;
    decNumberFromInt32(error.Get(), kUnitsOfError);
    error.number.exponent = computed.number.exponent;
    DecimalFlags ignored;
    decNumberAdd(edge.Get(), computed.Get(), error.Get(), &context);
    const Decimal above = Rounded(edge.Get(), 0, ignored);
    decNumberSubtract(edge.Get(), computed.Get(), error.Get(), &context);
    return Rounded(edge.Get(), 0, ignored) == above;
}

// Computes with more digits until they decide. @p compute(result, context)
template <class Compute> Decimal CorrectlyRounded(Compute compute, DecimalFlags& flags) {
    constexpr std::uint32_t kEnds =
        DEC_Overflow | DEC_Underflow | DEC_Division_by_zero | DEC_IEEE_754_Invalid_operation;
    for (int digits = kFirstDigits;; digits = std::min(digits * 2, kMostDigits - 3)) {
        decContext context = WideContext(digits);
        ManyDigits result;
        compute(result.Get(), context);
        const bool isExact = (context.status & DEC_Inexact) == 0;
        const bool isEnd = isExact || (context.status & kEnds) != 0 || decNumberIsSpecial(result.Get());
        if (isEnd || digits == kMostDigits - 3 || IsDecided(result, digits))
            return Rounded(result.Get(), context.status, flags);
    }
}

using Function = decNumber* (*)(decNumber*, const decNumber*, decContext*);

template <Function kFunction> Decimal Computed(const Decimal& a, DecimalFlags& flags) {
    const DecNumber number = NumberOf(a);
    return CorrectlyRounded([&](decNumber* result, decContext& context) { kFunction(result, number.Get(), &context); },
                            flags);
}

bool IsOdd(const Decimal& whole) noexcept {
    DecimalFlags ignored;
    return whole.Reduced().Exponent() == 0 && !Remainder(whole, Decimal(2), ignored).IsZero();
}

// The least d for which d times the number is whole; 0 where it is above 10,000, past which no root of a number with 34
// digits and decimal128's exponents is exact.
int DenominatorOf(const Decimal& number) noexcept {
    constexpr int kMost = 10'000;
    Decimal whole = number.Reduced();
    const int places = std::max(-whole.Exponent(), 0);
    whole = DecimalAccess::Finite(whole.IsNegative(), DecimalAccess::CoefficientOf(whole), 0);
    DecimalFlags ignored;
    int denominator = 1;
    for (const int prime : {2, 5}) {
        int powers = places;
        for (Decimal rest = whole; powers > 0 && Remainder(rest, Decimal(prime), ignored).IsZero(); --powers)
            rest = Divide(rest, Decimal(prime), ignored);
        for (; powers > 0; --powers) {
            denominator *= prime;
            if (denominator > kMost) return 0;
        }
    }
    return denominator;
}

// The root of a positive number, where it is exact.
std::optional<Decimal> ExactRoot(const Decimal& number, int degree) {
    decContext context = WideContext(kFirstDigits);
    ManyDigits root, power;
    decNumberDivide(power.Get(), NumberOf(Decimal(1)).Get(), NumberOf(Decimal(degree)).Get(), &context);
    decNumberPower(root.Get(), NumberOf(number).Get(), power.Get(), &context);
    DecimalFlags ignored;
    const Decimal nearest = Rounded(root.Get(), 0, ignored).Reduced();
    // A root with more digits has a power with more than fit.
    if (!nearest.IsFinite() || nearest.Digits() > Decimal::kDigits / 2 + 1) return {};
    context = WideContext(kFirstDigits);
    decNumberPower(power.Get(), NumberOf(nearest).Get(), NumberOf(Decimal(degree)).Get(), &context);
    if ((context.status & DEC_Inexact) != 0) return {};
    return Rounded(power.Get(), 0, ignored) == number ? std::optional(nearest) : std::nullopt;
}

Decimal PowerOf(const Decimal& base, const Decimal& exponent, DecimalFlags& flags) {
    return CorrectlyRounded(
        [&](decNumber* result, decContext& context) {
            decNumberPower(result, NumberOf(base).Get(), NumberOf(exponent).Get(), &context);
        },
        flags);
}

// More digits never decide where the exact result ends with a 5 after the last digit, or has no more digits.
Decimal PositivePower(const Decimal& base, const Decimal& exponent, DecimalFlags& flags) {
    if (base == Decimal(1) && exponent.IsFinite()) return Decimal(1);  // decNumber calls it inexact
    const bool isOrdinary = base.IsFinite() && exponent.IsFinite() && !base.IsZero();
    const int degree = isOrdinary && !exponent.IsInteger() ? DenominatorOf(exponent) : 0;
    const std::optional<Decimal> root = degree > 1 ? ExactRoot(base, degree) : std::nullopt;
    if (!root) return PowerOf(base, exponent, flags);
    DecimalFlags ignored;
    return PowerOf(*root, Multiply(exponent, Decimal(degree), ignored).Reduced(), flags);
}

double Log2(const Decimal& positive) {
    const Decimal digits = DecimalAccess::Finite(false, DecimalAccess::CoefficientOf(positive), 0);
    return std::log2(digits.ToDouble()) + positive.Exponent() * std::log2(10.0);
}

}  // namespace

Decimal Exponential(const Decimal& a, DecimalFlags& flags) { return Computed<decNumberExp>(a, flags); }
Decimal NaturalLogarithm(const Decimal& a, DecimalFlags& flags) { return Computed<decNumberLn>(a, flags); }
Decimal DecimalLogarithm(const Decimal& a, DecimalFlags& flags) { return Computed<decNumberLog10>(a, flags); }

Decimal BinaryLogarithm(const Decimal& a, DecimalFlags& flags) {
    DecimalFlags ignored;
    const bool isPositive = a.IsFinite() && !a.IsZero() && !a.IsNegative();
    const auto nearest = isPositive ? static_cast<std::int64_t>(std::round(Log2(a))) : 0;
    if (isPositive && Power(Decimal(2), Decimal(nearest), ignored) == a && !ignored.isInexact) return Decimal(nearest);
    return CorrectlyRounded(
        [&](decNumber* result, decContext& context) {
            ManyDigits two;
            decNumberLn(two.Get(), NumberOf(Decimal(2)).Get(), &context);
            context.status = 0;
            decNumberLn(result, NumberOf(a).Get(), &context);
            decNumberDivide(result, result, two.Get(), &context);
        },
        flags);
}

Decimal Power(const Decimal& base, const Decimal& exponent, DecimalFlags& flags) {
    // decNumber computes whole powers of more than nine digits as others, which negative numbers do not have.
    if (!base.IsNegative() || base.IsZero() || !exponent.IsInteger()) return PositivePower(base, exponent, flags);
    const Decimal power = PositivePower(base.Absolute(), exponent, flags);
    return IsOdd(exponent) ? -power : power;
}

}  // namespace qel
