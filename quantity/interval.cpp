#include "qellib10/quantity/interval.h"

#include <algorithm>

#include "qellib10/platform/decimal/decimal_functions.h"

namespace qel {
namespace {

using Bound = Interval::Bound;
using Fraction = Interval::Fraction;

Fraction FractionOf(const Bound& bound) { return bound.exact.value_or(Fraction{bound.value, Decimal(1)}); }

bool AreDecimals(const Bound& a, const Bound& b) { return !a.exact && !b.exact; }

std::optional<Fraction> IfExact(const Fraction& fraction, const DecimalFlags& flags) {
    const auto& [numerator, denominator] = fraction;
    const bool isLost = flags.isInexact || flags.isTooSmall || flags.isInvalid;
    if (isLost || !numerator.IsFinite() || !denominator.IsFinite() || denominator.IsZero()) return {};
    return fraction;
}

std::optional<Fraction> Negated(std::optional<Fraction> fraction) {
    if (fraction) fraction->numerator = -fraction->numerator;
    return fraction;
}

const Decimal& Infinity() {
    static const Decimal infinity = [] {
        DecimalFlags ignored;
        return Decimal::OfText("Infinity", ignored);
    }();
    return infinity;
}

std::optional<std::size_t> CauseOf(const Interval& a, const Interval& b) { return a.cause ? a.cause : b.cause; }

// Where two bounds are the same number, it is possible if one of them says so.
bool IsBefore(const Bound& a, const Bound& b) {
    return a.value < b.value || (a.value == b.value && !a.isOpen && b.isOpen);
}
bool IsAfter(const Bound& a, const Bound& b) {
    return a.value > b.value || (a.value == b.value && !a.isOpen && b.isOpen);
}

const Decimal& Greatest() {
    static const Decimal greatest = [] {
        DecimalFlags ignored;
        return Decimal::OfText("9.999999999999999999999999999999999E+6144", ignored);
    }();
    return greatest;
}

// The number next to 0.
const Decimal& Least() {
    static const Decimal least = [] {
        DecimalFlags ignored;
        return Decimal::Scaled(1, -6176, ignored);
    }();
    return least;
}

// The value at an end of the operands as a lower and as an upper bound. Where it is past the range of the numbers, or
// digits were lost near 0, each bound is the next number on its side, so that no possible value is left out.
template <class Compute>
Interval Ends(bool isOpen, DecimalFlags& flags, Compute compute, const std::optional<Fraction>& fraction = {}) {
    DecimalFlags happened;
    const Decimal value = fraction ? Divide(fraction->numerator, fraction->denominator, happened) : compute(happened);
    flags.Join(happened);
    if (value.IsNan()) return Interval::Everything({});
    if (value.IsInfinite())
        return value.IsNegative() ? Interval{{value, true}, {-Greatest(), true}, {}}
                                  : Interval{{Greatest(), true}, {value, true}, {}};
    const bool isNearZero = happened.isTooSmall || (value.IsZero() && happened.isInexact);
    DecimalFlags exact;
    if (!isNearZero && happened.isInexact) {
        // The bound itself is within half a unit of the last place.
        const Decimal unit = Decimal::Scaled(1, value.Exponent(), exact);
        return {{Subtract(value, unit, exact), isOpen, fraction}, {Add(value, unit, exact), isOpen, fraction}, {}};
    }
    if (!isNearZero) return {{value, isOpen}, {value, isOpen}, {}};
    if (value.IsZero())
        return value.IsNegative() ? Interval{{-Least(), true}, {{}, true}, {}}
                                  : Interval{{{}, true}, {Least(), true}, {}};
    return {{Subtract(value, Least(), exact), true}, {Add(value, Least(), exact), true}, {}};
}

// A fraction stays where its end is certainly the outermost one: the numbers next to two fractions may be the same, or
// in another order than the fractions.
Interval Spanned(const std::array<Interval, 4>& ends, const std::optional<std::size_t>& cause) {
    const Interval *lowest = ends.data(), *highest = ends.data();
    for (const Interval& end : ends) {
        if (IsBefore(end.lower, lowest->lower)) lowest = &end;
        if (IsAfter(end.upper, highest->upper)) highest = &end;
    }
    Interval all{lowest->lower, highest->upper, cause};
    for (const Interval& end : ends) {
        if (end.lower != lowest->lower && end.lower.value <= lowest->upper.value) all.lower.exact.reset();
        if (end.upper != highest->upper && end.upper.value >= highest->lower.value) all.upper.exact.reset();
    }
    return all;
}

Interval At(const Bound& bound) { return {bound, bound, {}}; }

// 0 times anything is 0, also times a side of which nothing is known: that is no number either.
Interval Times(const Bound& a, const Bound& b, DecimalFlags& flags) {
    const bool isZero = (a.value.IsZero() && !a.isOpen) || (b.value.IsZero() && !b.isOpen);
    if (isZero) return At({});
    if (a.value.IsZero() || b.value.IsZero()) return At({Decimal(), true});
    return Ends(
        a.isOpen || b.isOpen, flags, [&](DecimalFlags& happened) { return Multiply(a.value, b.value, happened); },
        ExactProduct(a, b));
}

// Of a divisor without 0; an end of it at 0 is open, and the quotients grow without end towards it.
Interval By(const Bound& a, const Bound& b, int sign, DecimalFlags& flags) {
    if (a.value.IsZero()) return At({Decimal(), a.isOpen});
    if (b.value.IsInfinite()) return At({Decimal(), true});
    if (b.value.IsZero()) return At({a.value.IsNegative() == (sign < 0) ? Infinity() : -Infinity(), true});
    return Ends(
        a.isOpen || b.isOpen, flags, [&](DecimalFlags& happened) { return Divide(a.value, b.value, happened); },
        ExactQuotient(a, b));
}

Interval Everywhere(const Interval& a, const Interval& b) { return Interval::Everything(CauseOf(a, b)); }

// The function of each bound, where it grows or falls with its argument.
template <class Function> Interval Monotone(const Interval& a, bool grows, DecimalFlags& flags, Function function) {
    const auto ends = [&](const Bound& bound) {
        return Ends(bound.isOpen, flags, [&](DecimalFlags& happened) { return function(bound.value, happened); });
    };
    const Interval first = ends(a.lower), last = ends(a.upper);
    return grows ? Interval{first.lower, last.upper, a.cause} : Interval{last.lower, first.upper, a.cause};
}

// Also of more digits than fit, where there is no remainder.
bool IsEven(const Decimal& whole) {
    DecimalFlags ignored;
    return whole.Reduced().Exponent() > 0 || Remainder(whole, Decimal(2), ignored).IsZero();
}

}  // namespace

std::optional<Fraction> ExactSum(const Bound& a, const Bound& b) {
    if (AreDecimals(a, b)) return {};
    const Fraction left = FractionOf(a), right = FractionOf(b);
    DecimalFlags flags;
    if (left.denominator == right.denominator)
        return IfExact({Add(left.numerator, right.numerator, flags), left.denominator}, flags);
    const Decimal first = Multiply(left.numerator, right.denominator, flags),
                  second = Multiply(right.numerator, left.denominator, flags);
    return IfExact({Add(first, second, flags), Multiply(left.denominator, right.denominator, flags)}, flags);
}

std::optional<Fraction> ExactProduct(const Bound& a, const Bound& b) {
    if (AreDecimals(a, b)) return {};
    const Fraction left = FractionOf(a), right = FractionOf(b);
    DecimalFlags flags;
    const Decimal numerator = Multiply(left.numerator, right.numerator, flags);
    return IfExact({numerator, Multiply(left.denominator, right.denominator, flags)}, flags);
}

std::optional<Fraction> ExactQuotient(const Bound& a, const Bound& b) {
    const Fraction left = FractionOf(a), right = FractionOf(b);
    DecimalFlags flags;
    const Decimal numerator = Multiply(left.numerator, right.denominator, flags);
    return IfExact({numerator, Multiply(left.denominator, right.numerator, flags)}, flags);
}

// Of another sign than the number, as that of 1 / 3 * 3 - 1, it would be another case in a product.
Interval Interval::Point(const Decimal& value, const std::optional<Fraction>& exact) {
    if (!exact || value.IsZero() || exact->numerator.IsZero()) return Point(value);
    const bool isNegative = exact->numerator.IsNegative() != exact->denominator.IsNegative();
    if (isNegative != value.IsNegative()) return Point(value);
    return {{value, false, exact}, {value, false, exact}, {}};
}

Interval Interval::Everything(const std::optional<std::size_t>& cause) {
    return {{-Infinity(), true}, {Infinity(), true}, cause};
}

Interval Interval::Of(const Reading& reading, std::size_t ownPosition) {
    const std::size_t position = reading.cause.value_or(ownPosition);
    switch (reading.kind) {
        case Reading::Kind::kValue:
            return Point(reading.value);
        case Reading::Kind::kBelow:
            return {{-Infinity(), true}, {reading.value, !reading.isIncluded}, position};
        case Reading::Kind::kAbove:
            return {{reading.value, !reading.isIncluded}, {Infinity(), true}, position};
        default:
            return Everything(position);
    }
}

int Interval::Sign() const {
    const Decimal zero;
    if (lower.value > zero || (lower.value.IsZero() && lower.isOpen)) return 1;
    return upper.value < zero || (upper.value.IsZero() && upper.isOpen) ? -1 : 0;
}

bool Interval::HasZero() const { return Sign() == 0; }

Interval Negated(const Interval& a) {
    return {{-a.upper.value, a.upper.isOpen, Negated(a.upper.exact)},
            {-a.lower.value, a.lower.isOpen, Negated(a.lower.exact)},
            a.cause};
}

Interval Absolute(const Interval& a) {
    if (a.Sign() > 0) return a;
    const Interval negated = Negated(a);
    if (a.Sign() < 0) return negated;
    const Bound& upper = IsAfter(a.upper, negated.upper) ? a.upper : negated.upper;
    return {{}, {upper.value, upper.isOpen}, a.cause};  // the other one's fraction may be the greater one
}

Interval Sum(const Interval& a, const Interval& b, DecimalFlags& flags) {
    const auto ends = [&](const Bound& left, const Bound& right) {
        return Ends(
            left.isOpen || right.isOpen, flags,
            [&](DecimalFlags& happened) { return Add(left.value, right.value, happened); }, ExactSum(left, right));
    };
    return {ends(a.lower, b.lower).lower, ends(a.upper, b.upper).upper, CauseOf(a, b)};
}

Interval Product(const Interval& a, const Interval& b, DecimalFlags& flags) {
    return Spanned({Times(a.lower, b.lower, flags), Times(a.lower, b.upper, flags), Times(a.upper, b.lower, flags),
                    Times(a.upper, b.upper, flags)},
                   CauseOf(a, b));
}

Interval Quotient(const Interval& a, const Interval& b, DecimalFlags& flags) {
    const int sign = b.Sign();
    if (sign == 0) return Everywhere(a, b);
    return Spanned({By(a.lower, b.lower, sign, flags), By(a.lower, b.upper, sign, flags),
                    By(a.upper, b.lower, sign, flags), By(a.upper, b.upper, sign, flags)},
                   CauseOf(a, b));
}

Interval PowerOf(const Interval& base, const Interval& exponent, DecimalFlags& flags) {
    const Decimal zero;
    if (exponent.IsPoint()) {
        const Decimal& power = exponent.lower.value;
        if (power < zero) return Quotient(Interval::Point(Decimal(1)), PowerOf(base, Negated(exponent), flags), flags);
        const auto raised = [&](const Decimal& value, DecimalFlags& happened) { return Power(value, power, happened); };
        if (power.IsZero()) return base.HasZero() ? Everywhere(base, exponent) : Interval::Point(Decimal(1));
        if (power.IsInteger()) return Monotone(IsEven(power) ? Absolute(base) : base, true, flags, raised);
        return base.lower.value < zero ? Everywhere(base, exponent) : Monotone(base, true, flags, raised);
    }
    const Decimal& number = base.lower.value;
    if (!base.IsPoint() || number <= zero) return Everywhere(base, exponent);
    const auto raised = [&](const Decimal& value, DecimalFlags& happened) { return Power(number, value, happened); };
    Interval power = Monotone(exponent, number >= Decimal(1), flags, raised);
    power.cause = CauseOf(base, exponent);
    return power;
}

Interval RoundedBy(const RoundingRule& rule, const Interval& a) {
    const auto rounded = [&](const Bound& bound) {
        return bound.value.IsFinite() ? Bound{rule.Round(bound.value).rounded, false} : bound;
    };
    const Interval result{rounded(a.lower), rounded(a.upper), a.cause};
    return result.lower.value.IsNan() || result.upper.value.IsNan() ? Interval::Everything(a.cause) : result;
}

Interval Grown(const Interval& a, GrowingFunction function, DecimalFlags& flags) {
    return Monotone(a, true, flags, function);
}

Truth IsLess(const Interval& a, const Interval& b) {
    const bool isTouching = a.upper.isOpen || b.lower.isOpen;
    if (a.upper.value < b.lower.value || (a.upper.value == b.lower.value && isTouching)) return Truth::kYes;
    return a.lower.value >= b.upper.value ? Truth::kNo : Truth::kUndecided;
}

Truth IsEqual(const Interval& a, const Interval& b) {
    if (IsLess(a, b) == Truth::kYes || IsLess(b, a) == Truth::kYes) return Truth::kNo;
    return a.IsPoint() && b.IsPoint() ? Truth::kYes : Truth::kUndecided;
}

}  // namespace qel
