#include <algorithm>
#include <cmath>
#include <numeric>

#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_double.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;
using Operation = FormulaOperation;

class Machine {
public:
    Machine(const FormulaProgram& program, std::span<const double> values) : m_program(program), m_values(values) {
        m_stack.reserve(program.stack);
    }

    double Run() {
        for (std::size_t at = 0; at < m_program.steps.size();) {
            const FormulaStep& step = m_program.steps[at];
            if (Jumps(step.operation)) {
                at = IsTaken(step.operation) ? step.index : at + 1;
                continue;
            }
            m_stack.push_back(Checked(step, Computed(step)));
            ++at;
        }
        return m_stack.back();
    }

private:
    [[noreturn]] static void Refuse(const FormulaStep& step, Kind kind, const char* expected = "") {
        throw FormulaError{kind, step.position, step.length, expected, {}};
    }

    double Taken() {
        const double value = m_stack.back();
        m_stack.pop_back();
        return value;
    }

    bool IsTaken(Operation jump) {
        switch (jump) {
            case Operation::kAndThen:
                return m_stack.back() == 0.0;
            case Operation::kOrElse:
                return m_stack.back() != 0.0;
            case Operation::kIfNot:
                return Taken() == 0.0;
            default:
                return true;
        }
    }

    static double Checked(const FormulaStep& step, double value) {
        if (std::isfinite(value)) return value;
        if (step.operation == Operation::kVariable) Refuse(step, Kind::kReading, "a value that is not finite");
        Refuse(step, std::isnan(value) ? Kind::kUndefined : Kind::kTooLarge);
    }

    double Computed(const FormulaStep& step) {
        if (TakesOne(step.operation)) return OfOne(step, Taken());
        if (TakesMany(step.operation)) return OfMany(step);
        if (TakesTwo(step.operation)) {
            const double right = Taken();
            return OfTwo(step, Taken(), right);
        }
        if (step.operation == Operation::kNumber) return m_program.numbers[step.index].nearest;
        if (step.operation == Operation::kConstant) return ConstantValue(step.index);
        return m_values[m_program.variables[step.index]];
    }

    double OfOne(const FormulaStep& step, double value) const {
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

    static double OfTwo(const FormulaStep& step, double left, double right) {
        switch (step.operation) {
            case Operation::kAdd:
                return left + right;
            case Operation::kSubtract:
                return left - right;
            case Operation::kMultiply:
                return left * right;
            case Operation::kDivide:
                if (right == 0.0) Refuse(step, Kind::kDividedByZero);
                return left / right;
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

    double OfMany(const FormulaStep& step) {
        const auto first = m_stack.end() - static_cast<std::ptrdiff_t>(step.index);
        const double result = step.operation == Operation::kMin   ? *std::min_element(first, m_stack.end())
                              : step.operation == Operation::kMax ? *std::max_element(first, m_stack.end())
                                                                  : std::accumulate(first, m_stack.end(), 0.0);
        m_stack.erase(first, m_stack.end());
        return step.operation == Operation::kMean ? result / step.index : result;
    }

    const FormulaProgram& m_program;
    std::span<const double> m_values;
    std::vector<double> m_stack;
};

}  // namespace

double ConstantValue(std::size_t index) {
    DecimalFlags ignored;
    return Decimal::OfText(FormulaConstants()[index].value, ignored).ToDouble();
}

double Rounded(double value, const RoundingRule& rule) {
    return rule.Round(Decimal::OfDouble(value)).rounded.ToDouble();
}

std::optional<double> EvaluatePlainly(const FormulaProgram& program, std::span<const double> values,
                                      FormulaError& error) {
    try {
        return Machine(program, values).Run();
    } catch (const FormulaError& failure) {
        error = failure;
        return {};
    }
}

}  // namespace qel
