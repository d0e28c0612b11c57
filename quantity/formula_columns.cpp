#include "qellib10/quantity/formula_columns.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "qellib10/quantity/formula_double.h"

namespace qel {
namespace {

using Operation = FormulaOperation;

constexpr std::size_t kMostSteps = 10'000;  // a number among them takes 2 KB for each thread
constexpr std::size_t kRows = ColumnFormula::kRows;

// Loops of one simple operation, which the compiler makes vector instructions of. What is not finite gives NaN when it
// is multiplied by 0, and the sum in check keeps it.
template <class Function> void Apply(double* result, const double* left, const double* right, Function function) {
    for (std::size_t i = 0; i < kRows; ++i) result[i] = function(left[i], right[i]);
}
template <class Function> void Apply(double* result, const double* operand, Function function) {
    for (std::size_t i = 0; i < kRows; ++i) result[i] = function(operand[i]);
}
void CheckAll(double* check, const double* values) {
    for (std::size_t i = 0; i < kRows; ++i) check[i] += values[i] * 0.0;
}

void CarryOutTwo(Operation operation, double* result, const double* left, const double* right) {
    switch (operation) {
        case Operation::kAdd:
            return Apply(result, left, right, [](double x, double y) { return x + y; });
        case Operation::kSubtract:
            return Apply(result, left, right, [](double x, double y) { return x - y; });
        case Operation::kMultiply:
            return Apply(result, left, right, [](double x, double y) { return x * y; });
        case Operation::kDivide:
            return Apply(result, left, right, [](double x, double y) { return x / y; });
        default:  // power
            return Apply(result, left, right,
                         [](double x, double y) { return x == 0.0 && y <= 0.0 ? double{NAN} : std::pow(x, y); });
    }
}

}  // namespace

bool ColumnFormula::Fits(const FormulaProgram& program) {
    return program.steps.size() <= kMostSteps && std::ranges::none_of(program.steps, [](const FormulaStep& step) {
               return Jumps(step.operation) || GivesTruth(step.operation);
           });
}

// A result has one of two columns for its height in the stack: the one that is not its left operand, since a loop whose
// result overlaps an operand is not made into vector instructions.
ColumnFormula::ColumnFormula(const FormulaProgram& program)
    : m_rules(program.rules), m_inputs(program.variables.size()) {
    const auto isLiteral = [](const FormulaStep& step) {
        return step.operation == Operation::kNumber || step.operation == Operation::kConstant;
    };
    const auto literals = static_cast<std::size_t>(std::ranges::count_if(program.steps, isLiteral));
    const std::size_t firstResult = m_inputs + literals;
    m_columns.resize((firstResult + 2 * (program.stack + 1)) * kRows);
    std::size_t literal = m_inputs;
    std::vector<std::size_t> stack;
    for (const FormulaStep& step : program.steps) {
        if (step.operation == Operation::kVariable) {
            stack.push_back(step.index);
            continue;
        }
        if (step.operation == Operation::kEarlier) {
            stack.push_back(stack[stack.size() - 1 - step.index]);
            continue;
        }
        if (isLiteral(step)) {
            const bool isNumber = step.operation == Operation::kNumber;
            std::fill_n(Column(literal), kRows,
                        isNumber ? program.numbers[step.index].nearest : ConstantValue(step.index));
            stack.push_back(literal++);
            continue;
        }
        const std::size_t count = TakesOne(step.operation) ? 1 : TakesTwo(step.operation) ? 2 : step.index;
        const auto first = stack.end() - static_cast<std::ptrdiff_t>(count);
        Step made{step.operation, 0, *first, stack.back(), {}, step.index};
        if (TakesMany(step.operation)) made.operands.assign(first, stack.end());
        stack.erase(first, stack.end());
        made.result = firstResult + 2 * stack.size();
        if (made.left == made.result) ++made.result;
        stack.push_back(made.result);
        m_steps.push_back(std::move(made));
    }
    m_last = stack.back();
}

void ColumnFormula::Evaluate(double* results) {
    std::array<double, kRows> check = {};
    for (std::size_t i = 0; i < m_inputs; ++i) CheckAll(check.data(), Column(i));
    for (const Step& step : m_steps) {
        double* const result = Column(step.result);
        if (TakesOne(step.operation)) {
            CarryOutOne(step, result, Column(step.left));
        } else if (TakesTwo(step.operation)) {
            CarryOutTwo(step.operation, result, Column(step.left), Column(step.right));
        } else {
            CarryOutMany(step, result);
        }
        CheckAll(check.data(), result);
    }
    const double* const last = Column(m_last);
    for (std::size_t i = 0; i < kRows; ++i) results[i] = check[i] == 0.0 ? last[i] : double{NAN};
}

void ColumnFormula::CarryOutOne(const Step& step, double* result, const double* operand) {
    switch (step.operation) {
        case Operation::kNegate:
            return Apply(result, operand, [](double x) { return -x; });
        case Operation::kAbs:
            return Apply(result, operand, [](double x) { return std::abs(x); });
        case Operation::kSqrt:
            return Apply(result, operand, [](double x) { return std::sqrt(x); });
        case Operation::kExp:
            return Apply(result, operand, [](double x) { return std::exp(x); });
        case Operation::kLn:
            return Apply(result, operand, [](double x) { return std::log(x); });
        case Operation::kLog10:
            return Apply(result, operand, [](double x) { return std::log10(x); });
        case Operation::kLog2:
            return Apply(result, operand, [](double x) { return std::log2(x); });
        default:
            return Apply(result, operand, [&](double x) { return Rounded(x, m_rules[step.rule]); });
    }
}

void ColumnFormula::CarryOutMany(const Step& step, double* result) {
    const bool isSum = step.operation == Operation::kSum || step.operation == Operation::kMean;
    if (isSum)
        std::fill_n(result, kRows, 0.0);
    else
        std::copy_n(Column(step.left), kRows, result);
    for (std::size_t i = isSum ? 0 : 1; i < step.operands.size(); ++i) {
        const double* const next = Column(step.operands[i]);
        if (isSum)
            Apply(result, result, next, [](double sum, double x) { return sum + x; });
        else if (step.operation == Operation::kMin)
            Apply(result, result, next, [](double least, double x) { return x < least ? x : least; });
        else
            Apply(result, result, next, [](double most, double x) { return most < x ? x : most; });
    }
    if (step.operation == Operation::kMean) {
        const auto count = static_cast<double>(step.operands.size());
        Apply(result, result, [count](double sum) { return sum / count; });
    }
}

}  // namespace qel
