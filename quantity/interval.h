#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/quantity/formula_machine.h"
#include "qellib10/quantity/reading.h"
#include "qellib10/quantity/rounding_rule.h"

namespace qel {

/// All numbers between two bounds, which are infinite where nothing is known of that side. A bound that lost digits is
/// moved outwards by a unit of its last place. Where a result is past the range of the numbers, or loses
/// digits near 0, its bounds are the next numbers on both sides of it: a statement stays true. Reasons of a computation
/// are kept: the variable because of which it is more than one number.
struct Interval {
    // Both have all of their digits, so that (L / 3) * 150 is as exact as L * 50.
    struct Fraction {
        Decimal numerator, denominator;

        friend bool operator==(const Fraction&, const Fraction&) = default;
    };
    struct Bound {
        Decimal value;
        bool isOpen = false;                 // the bound itself is not possible
        std::optional<Fraction> exact = {};  // what value is the next number outwards of, where that is known

        friend bool operator==(const Bound&, const Bound&) = default;
    };

    Bound lower, upper;
    std::optional<std::size_t> cause;

    static Interval Point(const Decimal& value) { return {{value}, {value}, {}}; }
    /// A number that lost digits; @p exact is what it would be with all of them.
    static Interval Point(const Decimal& value, const std::optional<Fraction>& exact);
    static Interval Everything(const std::optional<std::size_t>& cause);
    static Interval Of(const Reading& reading, std::size_t position);

    /// Whether it is one number; an infinite bound is none.
    bool IsPoint() const { return lower.value == upper.value && lower.value.IsFinite(); }
    bool IsBoundedBelow() const { return lower.value.IsFinite(); }
    bool IsBoundedAbove() const { return upper.value.IsFinite(); }
    /// Whether 0 is possible.
    bool HasZero() const;
    /// 1 where all of its numbers are above 0, -1 where all are below, else 0.
    int Sign() const;
};

/// The sum, product or quotient of two bounds with all digits; nothing where that needs more than 34, or is not needed
/// since both bounds are decimals and their sum or product is one.
std::optional<Interval::Fraction> ExactSum(const Interval::Bound& a, const Interval::Bound& b);
std::optional<Interval::Fraction> ExactProduct(const Interval::Bound& a, const Interval::Bound& b);
std::optional<Interval::Fraction> ExactQuotient(const Interval::Bound& a, const Interval::Bound& b);

Interval Negated(const Interval& a);
Interval Absolute(const Interval& a);
Interval Sum(const Interval& a, const Interval& b, DecimalFlags& flags);
Interval Product(const Interval& a, const Interval& b, DecimalFlags& flags);
/// Everything where the divisor may be 0.
Interval Quotient(const Interval& a, const Interval& b, DecimalFlags& flags);
/// Everything where some of the powers are not defined, or both are more than one number.
Interval PowerOf(const Interval& base, const Interval& exponent, DecimalFlags& flags);
Interval RoundedBy(const RoundingRule& rule, const Interval& a);

/// Of a function that grows with its argument.
using GrowingFunction = Decimal (*)(const Decimal&, DecimalFlags&);
Interval Grown(const Interval& a, GrowingFunction function, DecimalFlags& flags);

Truth IsLess(const Interval& a, const Interval& b);
Truth IsEqual(const Interval& a, const Interval& b);

}  // namespace qel
