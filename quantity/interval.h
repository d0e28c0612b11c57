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

/// All numbers between two bounds, which are infinite where nothing is known of that side. A bound is rounded half to
/// even like any other result, so it is as exact as one. Where a result is past the range of the numbers, or loses
/// digits near 0, its bounds are the next numbers on both sides of it: a statement stays true. Reasons of a computation
/// are kept: the variable because of which it is more than one number.
struct Interval {
    struct Bound {
        Decimal value;
        bool isOpen = false;  // the bound itself is not possible

        friend bool operator==(const Bound&, const Bound&) = default;
    };

    Bound lower, upper;
    std::optional<std::size_t> cause;

    static Interval Point(const Decimal& value) { return {{value}, {value}, {}}; }
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
