#include "qellib10/quantity/exact_operations.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "qellib10/platform/decimal/decimal_functions.h"
#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_error.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;
using Operation = FormulaOperation;

[[noreturn]] void Refuse(const FormulaStep& step, Kind kind, const char* expected = "") {
    throw FormulaError{kind, step.position, step.length, expected, {}, {}};
}

// Only called for what is not finite.
[[noreturn]] void RefuseResult(const FormulaStep& step, const Decimal& result, const DecimalFlags& flags) {
    if (step.operation == Operation::kRound) Refuse(step, Kind::kTooLarge, kTooManyDigits);
    if (flags.isDividedByZero)
        Refuse(step, step.operation == Operation::kDivide ? Kind::kDividedByZero : Kind::kUndefined);
    if (result.IsNan()) Refuse(step, Kind::kUndefined);
    const bool isLogarithm = step.operation >= Operation::kLn && step.operation <= Operation::kLog2;
    Refuse(step, isLogarithm ? Kind::kUndefined : Kind::kTooLarge);
}

const Decimal& Constant(std::size_t index) {
    static const std::vector<Decimal> constants = [] {
        std::vector<Decimal> values;
        DecimalFlags exact;
        for (const FormulaConstant& each : FormulaConstants()) values.push_back(Decimal::OfText(each.value, exact));
        return values;
    }();
    return constants[index];
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
            if (left.IsZero() && right < Decimal(0)) Refuse(step, Kind::kUndefined);
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

const Decimal& WrittenOperand(const FormulaProgram& program, const FormulaStep& step, DecimalFlags& flags) {
    if (step.operation == Operation::kConstant) return Constant(step.index);
    const WrittenNumber& number = program.numbers[step.index];
    if (number.isInexact) flags.isInexact = true;
    return number.value;
}

Decimal ExactOne(const FormulaProgram& program, const FormulaStep& step, const Decimal& value, DecimalFlags& flags) {
    Decimal result = One(program, step, value, flags);
    if (!result.IsFinite()) RefuseResult(step, result, flags);
    return result;
}

Decimal ExactTwo(const FormulaStep& step, const Decimal& left, const Decimal& right, DecimalFlags& flags) {
    Decimal result = Two(step, left, right, flags);
    if (!result.IsFinite()) RefuseResult(step, result, flags);
    return result;
}

Decimal ExactMany(const FormulaStep& step, std::span<const Decimal> values, DecimalFlags& flags) {
    if (step.operation == Operation::kMin) return *std::ranges::min_element(values, std::less<>());
    if (step.operation == Operation::kMax) return *std::ranges::max_element(values, std::less<>());
    Decimal result = values.front();
    for (const Decimal& value : values.subspan(1)) result = Add(result, value, flags);
    if (step.operation == Operation::kMean)
        result = Divide(result, Decimal(static_cast<std::int64_t>(values.size())), flags);
    if (!result.IsFinite()) RefuseResult(step, result, flags);
    return result;
}

}  // namespace qel
