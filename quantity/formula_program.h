#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/quantity/rounding_rule.h"

namespace qel {

/// What a step of a parsed formula does. Numbers and truths are on a stack: a step takes its operands from there and
/// puts its result there.
enum class FormulaOperation : std::uint8_t {
    // without operands
    kNumber,    // index: of the number
    kConstant,  // index: of the constant
    kVariable,  // index: of the variable
    // a number from a number
    kNegate,
    kAbs,
    kSqrt,
    kExp,
    kLn,
    kLog10,
    kLog2,
    kRound,  // index: of the rule
    // a truth from a truth
    kNot,
    // a number from two numbers
    kAdd,
    kSubtract,
    kMultiply,
    kDivide,
    kPower,
    // a truth from two numbers
    kLess,
    kLessOrEqual,
    kGreater,
    kGreaterOrEqual,
    kEqual,
    kNotEqual,
    // a truth from two truths
    kAnd,
    kOr,
    // a number from several numbers
    kMin,  // index: how many
    kMax,
    kMean,
    kSum,
    // goes on at step index
    kAndThen,  // where the truth on the stack is no, which stays there
    kOrElse,   // where it is yes, which stays there
    kIfNot,    // takes the truth; where it is no
    kGoOn,     // always
    // a number without operands
    kEarlier,  // that is on the stack already; index: how many are above it
};

constexpr bool TakesOne(FormulaOperation operation) {
    return operation >= FormulaOperation::kNegate && operation <= FormulaOperation::kNot;
}
constexpr bool TakesTwo(FormulaOperation operation) {
    return operation >= FormulaOperation::kAdd && operation <= FormulaOperation::kOr;
}
constexpr bool TakesMany(FormulaOperation operation) {
    return operation >= FormulaOperation::kMin && operation <= FormulaOperation::kSum;
}
constexpr bool GivesTruth(FormulaOperation operation) {
    return operation == FormulaOperation::kNot ||
           (operation >= FormulaOperation::kLess && operation <= FormulaOperation::kOr);
}
constexpr bool Jumps(FormulaOperation operation) {
    return operation >= FormulaOperation::kAndThen && operation <= FormulaOperation::kGoOn;
}

struct FormulaStep {
    FormulaOperation operation;
    std::uint32_t index;
    std::uint32_t position, length;  // of its operator, name or number in the text, in bytes
};

/// Why a rule rounds a number to none.
inline constexpr const char* kTooManyDigits = "rounded, it has more than 34 digits";

/// A number as it is written.
struct WrittenNumber {
    Decimal value;
    double nearest = 0.0;
    bool isInexact = false;  // it has more than 34 digits
};

/// A parsed formula: steps in the order in which they are carried out. Steps go on only forwards, so that each is
/// carried out once at most.
struct FormulaProgram {
    std::vector<FormulaStep> steps;
    std::vector<WrittenNumber> numbers;
    std::vector<RoundingRule> rules;
    std::vector<std::size_t> variables;  // position in the scope, by slot; each once, in the order of their first use
    std::size_t stack = 0;               // the most operands that are there at once
    bool isTruth = false;                // of the whole
    std::uint32_t position = 0, length = 0;  // of the whole in the text, with its outer brackets
    // Of a formula with those that it uses, whose steps come first and whose results stay on the stack:
    std::size_t others = 0;    // how many
    std::size_t firstOwn = 0;  // step; where it bends or jumps before that is a matter of the other formulas
};

}  // namespace qel
