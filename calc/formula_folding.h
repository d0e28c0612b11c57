#pragma once

#include <string_view>

namespace qel {

/// States of a grammar step's result, stored in CCalcVariable::m_nState.
inline constexpr int kStateError = -1;
inline constexpr int kStateUnknown = 0;  // check pass: depends on a variable
inline constexpr int kStateKnown = 1;    // a number

/// A part of a formula in the check pass: a known number, or something that depends on a variable. The name points into
/// the formula.
struct CheckedOperand {
    int state = kStateUnknown;
    double value = 1.0;     // known: the number; unknown: the sign of a single variable, else 1
    std::string_view name;  // unknown: if it is a single variable, its name as written in the formula

    bool Failed() const { return state == kStateError; }
};

constexpr CheckedOperand FailedOperand() { return {kStateError, 0.0, {}}; }
constexpr CheckedOperand KnownOperand(double value) { return {kStateKnown, value, {}}; }

// Constant folding of the check pass. Its purpose is to reject a division by a constant zero; it knows that a product
// with zero is zero and that a variable minus itself is zero. Two combined expressions have equal (empty) names, so
// their difference counts as zero as well, and a leading minus of constants is ignored. Kept, so that a formula that
// one installation accepts is accepted by all.

CheckedOperand FoldSum(const CheckedOperand& a, const CheckedOperand& b);
CheckedOperand FoldDifference(const CheckedOperand& a, const CheckedOperand& b);
CheckedOperand FoldProduct(const CheckedOperand& a, const CheckedOperand& b);
CheckedOperand FoldQuotient(const CheckedOperand& a, const CheckedOperand& b);

}  // namespace qel
