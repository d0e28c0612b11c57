#pragma once

#include <string_view>

namespace qel {

/// States of a grammar step's result, as CCalcVariable::m_nState carries them.
inline constexpr int kStateError = -1;
inline constexpr int kStateUnknown = 0;  // check pass: depends on a variable
inline constexpr int kStateKnown = 1;    // a number

/// The check pass's view of a part of a formula: a known number, or something that depends on a variable. The name
/// points into the formula.
struct CheckedOperand {
    int state = kStateUnknown;
    double value = 1.0;     // known: the number; unknown: the sign of a single variable, else 1
    std::string_view name;  // unknown: the variable as written in the formula when it is a single one

    bool Failed() const { return state == kStateError; }
};

constexpr CheckedOperand FailedOperand() { return {kStateError, 0.0, {}}; }
constexpr CheckedOperand KnownOperand(double value) { return {kStateKnown, value, {}}; }

// Constant folding of the check pass. It is there to reject a division by a constant zero, and knows that a product
// with zero is zero and that a variable less itself is. Two combined expressions have equal (empty) names, so their
// difference counts as zero as well, and a leading minus is ignored in constants: kept, so that a formula that one
// installation accepts is accepted by all.

CheckedOperand FoldSum(const CheckedOperand& a, const CheckedOperand& b);
CheckedOperand FoldDifference(const CheckedOperand& a, const CheckedOperand& b);
CheckedOperand FoldProduct(const CheckedOperand& a, const CheckedOperand& b);
CheckedOperand FoldQuotient(const CheckedOperand& a, const CheckedOperand& b);

}  // namespace qel
