#include "qellib10/quantity/double_arithmetic.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "qellib10/quantity/formula_double.h"

namespace qel {

using Kind = FormulaError::Kind;
using Operation = FormulaOperation;

namespace {

[[noreturn]] void Refuse(const FormulaStep& step, Kind kind, const char* expected = "") {
    throw FormulaError{kind, step.position, step.length, expected, {}, {}};
}

}  // namespace

double DoubleArithmetic::Start(const FormulaStep& step) const {
    if (step.operation == Operation::kNumber) return m_program.numbers[step.index].nearest;
    if (step.operation == Operation::kConstant) return ConstantValue(step.index);
    return m_values[m_program.variables[step.index]];
}

double DoubleArithmetic::One(const FormulaStep& step, double value) const {
    switch (step.operation) {
        case Operation::kNegate:
            return -value;
        case Operation::kAbs:
            return std::abs(value);
        case Operation::kSqrt:
            return std::sqrt(value);
        case Operation::kExp:
            return std::exp(value);
        case Operation::kLn:
            return value > 0.0 ? std::log(value) : NAN;
        case Operation::kLog10:
            return value > 0.0 ? std::log10(value) : NAN;
        case Operation::kLog2:
            return value > 0.0 ? std::log2(value) : NAN;
        case Operation::kRound:
            return Rounded(value, m_program.rules[step.index]);
        default:
            return value == 0.0 ? 1.0 : 0.0;
    }
}

double DoubleArithmetic::SeldomTwo(Operation operation, double left, double right) {
    switch (operation) {
        case Operation::kPower:
            return left == 0.0 && right <= 0.0 ? NAN : std::pow(left, right);
        case Operation::kLess:
            return left < right;
        case Operation::kLessOrEqual:
            return left <= right;
        case Operation::kGreater:
            return left > right;
        case Operation::kGreaterOrEqual:
            return left >= right;
        case Operation::kEqual:
            return left == right;
        case Operation::kNotEqual:
            return left != right;
        default:  // and, or: the left side did not decide
            return right;
    }
}

double DoubleArithmetic::Many(const FormulaStep& step, std::span<const double> values) {
    if (step.operation == Operation::kMin) return *std::ranges::min_element(values);
    if (step.operation == Operation::kMax) return *std::ranges::max_element(values);
    const double sum = std::accumulate(values.begin(), values.end(), 0.0);
    return step.operation == Operation::kMean ? sum / step.index : sum;
}

void DoubleArithmetic::RefuseDivision(const FormulaStep& step) { Refuse(step, Kind::kDividedByZero); }

void DoubleArithmetic::RefuseResult(const FormulaStep& step, double value) {
    if (step.operation == Operation::kVariable) Refuse(step, Kind::kReading, "a value that is not finite");
    if (step.operation == Operation::kRound) Refuse(step, Kind::kTooLarge, kTooManyDigits);
    Refuse(step, std::isnan(value) ? Kind::kUndefined : Kind::kTooLarge);
}

}  // namespace qel
