#include "qellib10/quantity/exact_operations.h"

#include <algorithm>
#include <functional>

#include "qellib10/platform/decimal/decimal_functions.h"
#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_error.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;
using Operation = FormulaOperation;

[[noreturn]] void Refuse(const FormulaStep& step, Kind kind) {
    throw FormulaError{kind, step.position, step.length, {}, {}, {}};
}

// Flags of one operation join those of all once its result is found to be a number.
Decimal Checked(const FormulaStep& step, const Decimal& result, const DecimalFlags& happened, DecimalFlags& flags) {
    if (happened.isDividedByZero)
        Refuse(step, step.operation == Operation::kDivide ? Kind::kDividedByZero : Kind::kUndefined);
    if (result.IsNan()) Refuse(step, Kind::kUndefined);
    const bool isLogarithm = step.operation >= Operation::kLn && step.operation <= Operation::kLog2;
    if (result.IsInfinite()) Refuse(step, isLogarithm ? Kind::kUndefined : Kind::kTooLarge);
    flags.Join(happened);
    return result;
}

Decimal Truth(bool isTrue) { return Decimal(isTrue ? 1 : 0); }

Decimal One(const FormulaProgram& program, const FormulaStep& step, const Decimal& value, DecimalFlags& flags) {
    switch (step.operation) {
        case Operation::kNegate:
            return -value;
        case Operation::kAbs:
            return value.Absolute();
        case Operation::kSqrt:
            return SquareRoot(value, flags);
        case Operation::kExp:
            return Exponential(value, flags);
        case Operation::kLn:
            return NaturalLogarithm(value, flags);
        case Operation::kLog10:
            return DecimalLogarithm(value, flags);
        case Operation::kLog2:
            return BinaryLogarithm(value, flags);
        case Operation::kRound:
            return program.rules[step.index].Round(value).rounded;
        default:
            return Truth(value.IsZero());
    }
}

Decimal Two(const FormulaStep& step, const Decimal& left, const Decimal& right, DecimalFlags& flags) {
    switch (step.operation) {
        case Operation::kAdd:
            return Add(left, right, flags);
        case Operation::kSubtract:
            return Subtract(left, right, flags);
        case Operation::kMultiply:
            return Multiply(left, right, flags);
        case Operation::kDivide:
            // 0 by 0 is a division by zero like the others.
            if (right.IsZero()) Refuse(step, Kind::kDividedByZero);
            return Divide(left, right, flags);
        case Operation::kPower:
            return Power(left, right, flags);
        case Operation::kLess:
            return Truth(left < right);
        case Operation::kLessOrEqual:
            return Truth(left <= right);
        case Operation::kGreater:
            return Truth(left > right);
        case Operation::kGreaterOrEqual:
            return Truth(left >= right);
        case Operation::kEqual:
            return Truth(left == right);
        case Operation::kNotEqual:
            return Truth(left != right);
        default:  // and, or: the left side did not decide
            return right;
    }
}

}  // namespace

Decimal WrittenOperand(const FormulaProgram& program, const FormulaStep& step, DecimalFlags& flags) {
    if (step.operation == Operation::kConstant) return Decimal::OfText(FormulaConstants()[step.index].value, flags);
    const WrittenNumber& number = program.numbers[step.index];
    flags.isInexact |= number.isInexact;
    return number.value;
}

Decimal ExactOne(const FormulaProgram& program, const FormulaStep& step, const Decimal& value, DecimalFlags& flags) {
    DecimalFlags happened;
    const Decimal result = One(program, step, value, happened);
    return Checked(step, result, happened, flags);
}

Decimal ExactTwo(const FormulaStep& step, const Decimal& left, const Decimal& right, DecimalFlags& flags) {
    DecimalFlags happened;
    const Decimal result = Two(step, left, right, happened);
    return Checked(step, result, happened, flags);
}

Decimal ExactMany(const FormulaStep& step, std::span<const Decimal> values, DecimalFlags& flags) {
    if (step.operation == Operation::kMin) return *std::ranges::min_element(values, std::less<>());
    if (step.operation == Operation::kMax) return *std::ranges::max_element(values, std::less<>());
    DecimalFlags happened;
    Decimal result = values.front();
    for (const Decimal& value : values.subspan(1)) result = Add(result, value, happened);
    if (step.operation == Operation::kMean)
        result = Divide(result, Decimal(static_cast<std::int64_t>(values.size())), happened);
    return Checked(step, result, happened, flags);
}

}  // namespace qel
