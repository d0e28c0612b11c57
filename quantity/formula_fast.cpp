#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "qellib10/quantity/formula_double.h"

namespace qel {
namespace {

using Operation = FormulaOperation;

// Where the right operand of an operation is.
enum Operand : std::uint16_t { kOnStack = 0, kIsVariable = 64, kIsNumber = 128 };

constexpr std::uint16_t Code(Operation operation, Operand operand = kOnStack) {
    return static_cast<std::uint16_t>(static_cast<std::uint16_t>(operation) | operand);
}

}  // namespace

FastFormula::FastFormula(const FormulaProgram& program) : m_rules(program.rules), m_stack(program.stack) {
    std::vector<std::uint32_t> places;  // of each step of the program
    std::vector<bool> isTarget(program.steps.size() + 1);
    for (const FormulaStep& step : program.steps)
        if (Jumps(step.operation)) isTarget[step.index] = true;
    for (std::size_t i = 0; i < program.steps.size(); ++i) {
        places.push_back(static_cast<std::uint32_t>(m_steps.size()));
        const FormulaStep& step = program.steps[i];
        Step fast{Code(step.operation), step.index, 0.0};
        if (step.operation == Operation::kVariable) {
            fast.index = static_cast<std::uint32_t>(program.variables[step.index]);
        } else if (step.operation == Operation::kNumber) {
            fast.number = program.numbers[step.index].nearest;
        } else if (step.operation == Operation::kConstant) {
            fast = {Code(Operation::kNumber), 0, ConstantValue(step.index)};
        }
        const bool isArithmetic = step.operation >= Operation::kAdd && step.operation <= Operation::kDivide;
        if (isArithmetic && !isTarget[i]) {
            Step& right = m_steps.back();
            const bool isVariable = right.code == Code(Operation::kVariable);
            if (isVariable || right.code == Code(Operation::kNumber)) {
                right.code = Code(step.operation, isVariable ? kIsVariable : kIsNumber);
                continue;
            }
        }
        m_steps.push_back(fast);
    }
    places.push_back(static_cast<std::uint32_t>(m_steps.size()));
    for (Step& step : m_steps)
        if (step.code < kIsVariable && Jumps(static_cast<Operation>(step.code))) step.index = places[step.index];
}

// The upper end of the stack is in a register; the place below it in memory is written first and means nothing. What is
// not finite gives NaN when it is multiplied by 0, and the sum keeps it.
double FastFormula::Evaluate(const double* values) const {
    constexpr std::size_t kUsual = 32;
    std::array<double, kUsual> usual;
    std::vector<double> large(m_stack >= kUsual ? m_stack + 1 : 0);
    double* below = m_stack >= kUsual ? large.data() : usual.data();
    double top = 0.0, check = 0.0;
    const Step* const first = m_steps.data();
    const Step* const end = first + m_steps.size();
    for (const Step* step = first; step != end; ++step) {
        switch (step->code) {
            case Code(Operation::kNumber):
                *below++ = top;
                top = step->number;
                continue;
            case Code(Operation::kVariable):
                *below++ = top;
                top = values[step->index];
                break;
            case Code(Operation::kAdd):
                top = *--below + top;
                break;
            case Code(Operation::kAdd, kIsVariable):
                top += values[step->index];
                break;
            case Code(Operation::kAdd, kIsNumber):
                top += step->number;
                break;
            case Code(Operation::kSubtract):
                top = *--below - top;
                break;
            case Code(Operation::kSubtract, kIsVariable):
                top -= values[step->index];
                break;
            case Code(Operation::kSubtract, kIsNumber):
                top -= step->number;
                break;
            case Code(Operation::kMultiply):
                top = *--below * top;
                break;
            case Code(Operation::kMultiply, kIsVariable):
                top *= values[step->index];
                break;
            case Code(Operation::kMultiply, kIsNumber):
                top *= step->number;
                break;
            case Code(Operation::kDivide):
                top = *--below / top;
                break;
            case Code(Operation::kDivide, kIsVariable):
                top /= values[step->index];
                break;
            case Code(Operation::kDivide, kIsNumber):
                top /= step->number;
                break;
            case Code(Operation::kPower):
                if (*--below == 0.0 && top <= 0.0) return NAN;
                top = std::pow(*below, top);
                break;
            case Code(Operation::kNegate):
                top = -top;
                continue;
            case Code(Operation::kAbs):
                top = std::abs(top);
                continue;
            case Code(Operation::kSqrt):
                top = std::sqrt(top);
                break;
            case Code(Operation::kExp):
                top = std::exp(top);
                break;
            case Code(Operation::kLn):
                top = std::log(top);
                break;
            case Code(Operation::kLog10):
                top = std::log10(top);
                break;
            case Code(Operation::kLog2):
                top = std::log2(top);
                break;
            case Code(Operation::kRound):
                top = Rounded(top, m_rules[step->index]);
                break;
            case Code(Operation::kMin):
                for (std::uint32_t i = 1; i < step->index; ++i) top = std::min(top, *--below);
                continue;
            case Code(Operation::kMax):
                for (std::uint32_t i = 1; i < step->index; ++i) top = std::max(top, *--below);
                continue;
            case Code(Operation::kMean):
            case Code(Operation::kSum): {
                *below = top;
                below -= step->index - 1;
                top = std::accumulate(below, below + step->index, 0.0);
                if (step->code == Code(Operation::kMean)) top /= step->index;
                break;
            }
            case Code(Operation::kLess):
                top = *--below < top;
                continue;
            case Code(Operation::kLessOrEqual):
                top = *--below <= top;
                continue;
            case Code(Operation::kGreater):
                top = *--below > top;
                continue;
            case Code(Operation::kGreaterOrEqual):
                top = *--below >= top;
                continue;
            case Code(Operation::kEqual):
                top = *--below == top;
                continue;
            case Code(Operation::kNotEqual):
                top = *--below != top;
                continue;
            case Code(Operation::kNot):
                top = top == 0.0 ? 1.0 : 0.0;
                continue;
            case Code(Operation::kAnd):
            case Code(Operation::kOr):
                --below;  // the left side did not decide
                continue;
            case Code(Operation::kAndThen):
                if (top == 0.0) step = first + step->index - 1;
                continue;
            case Code(Operation::kOrElse):
                if (top != 0.0) step = first + step->index - 1;
                continue;
            case Code(Operation::kIfNot): {
                const bool isTrue = top != 0.0;
                top = *--below;
                if (!isTrue) step = first + step->index - 1;
                continue;
            }
            default:
                step = first + step->index - 1;
                continue;
        }
        check += top * 0.0;
    }
    return check == 0.0 ? top : NAN;
}

}  // namespace qel
