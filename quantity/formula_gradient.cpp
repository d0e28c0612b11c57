#include "qellib10/quantity/formula_gradient.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "qellib10/quantity/double_arithmetic.h"
#include "qellib10/quantity/formula_double.h"
#include "qellib10/quantity/formula_error.h"

namespace qel {

using Kind = FormulaError::Kind;
using Operation = FormulaOperation;

namespace {

constexpr double kUnit = std::numeric_limits<double>::epsilon() / 2;  // rounding of a result, relative to it

}  // namespace

// Carries out the steps for FormulaMachine, whose values are nodes, by their positions.
class FormulaGradient::Recording {
public:
    using Value = std::uint32_t;

    Recording(FormulaGradient& gradient, std::span<const double> values, std::span<const unsigned char> isActive)
        : m_gradient(gradient), m_arithmetic(gradient.m_program, {}), m_values(values), m_isActive(isActive) {}

    Value Start(const FormulaStep& step) {
        if (step.operation == Operation::kVariable)
            return Add(step, m_values[step.index], 0, 0, m_isActive[step.index] != 0,
                       kUnit * std::abs(m_values[step.index]));
        const double value = m_arithmetic.Start(step);
        if (step.operation == Operation::kNumber)
            m_gradient.NoteUnderflow(value, !m_gradient.m_program.numbers[step.index].value.IsZero());
        return Add(step, value, 0, 0, false, value == std::trunc(value) ? 0.0 : kUnit * std::abs(value));
    }

    Value One(const FormulaStep& step, Value operand) {
        const double result = m_arithmetic.One(step, Number(operand));
        if (step.operation == Operation::kAbs && IsActive(operand)) AddBend(step, operand, kZero);
        if (step.operation == Operation::kRound && IsActive(operand))
            m_gradient.m_roundings.push_back({operand, NextNode(), step.index, IsOwn(step)});
        m_gradient.NoteUnderflow(result, step.operation == Operation::kExp && IsActive(operand));
        return Add(step, result, operand, operand, IsActive(operand), ErrorOfOne(step, result, operand));
    }

    Value Two(const FormulaStep& step, Value left, Value right) {
        const double x = Number(left), y = Number(right);
        const bool isActive = IsActive(left) || IsActive(right);
        const bool isComparison = step.operation >= Operation::kLess && step.operation <= Operation::kNotEqual;
        if (isComparison && isActive) AddBend(step, left, right);
        const double result = DoubleArithmetic::Two(step, x, y);
        const bool isProduct = step.operation == Operation::kMultiply;
        if (isProduct || step.operation == Operation::kDivide || step.operation == Operation::kPower)
            m_gradient.NoteUnderflow(result, isActive && x != 0.0 && (!isProduct || y != 0.0));
        return Add(step, result, left, right, isActive, ErrorOfTwo(step, result, left, right));
    }

    Value Many(const FormulaStep& step, std::span<const Value> operands) {
        m_numbers.clear();
        for (const Value operand : operands) m_numbers.push_back(Number(operand));
        const double result = DoubleArithmetic::Many(step, m_numbers);
        if (step.operation == Operation::kMin || step.operation == Operation::kMax) {
            const Value taken =
                operands[static_cast<std::size_t>(std::ranges::find(m_numbers, result) - m_numbers.begin())];
            for (const Value operand : operands)
                if (operand != taken && (IsActive(operand) || IsActive(taken))) AddBend(step, taken, operand);
        }
        const bool isActive = std::ranges::any_of(operands, [&](Value operand) { return IsActive(operand); });
        auto& all = m_gradient.m_operands;
        const auto first = static_cast<std::uint32_t>(all.size());
        all.insert(all.end(), operands.begin(), operands.end());
        double error = 0.0, size = 0.0;
        for (const Value operand : operands) {
            error += Error(operand);
            size += std::abs(Number(operand));
        }
        error += size * kUnit * static_cast<double>(operands.size());
        if (step.operation == Operation::kMean) error /= static_cast<double>(operands.size());
        return Add(step, result, first, first, isActive, error);
    }

    Truth TruthOf(Value node) const { return DoubleArithmetic::TruthOf(Number(node)); }
    static Value Undecided(Value condition) { return condition; }  // never: each condition is decided
    void Check(const FormulaStep& step, Value node) const { DoubleArithmetic::Check(step, Number(node)); }

private:
    double Number(Value node) const { return m_gradient.m_nodes[node].value; }
    double Error(Value node) const { return m_gradient.m_nodes[node].error; }
    // What the operand has passes on to first order, and the result is rounded.
    double ErrorOfOne(const FormulaStep& step, double result, Value operand) const {
        const double x = std::abs(Number(operand)), error = Error(operand), rounding = kUnit * std::abs(result);
        switch (step.operation) {
            case Operation::kSqrt:
                return 0.5 * error / result + rounding;
            case Operation::kExp:
                return result * error + 2.0 * rounding;
            case Operation::kLn:
                return error / x + 2.0 * rounding;
            case Operation::kLog10:
                return error / (x * std::numbers::ln10) + 2.0 * rounding;
            case Operation::kLog2:
                return error / (x * std::numbers::ln2) + 2.0 * rounding;
            default:
                return error;
        }
    }
    double ErrorOfTwo(const FormulaStep& step, double result, Value left, Value right) const {
        const double x = std::abs(Number(left)), y = std::abs(Number(right)), size = std::abs(result);
        switch (step.operation) {
            case Operation::kAdd:
            case Operation::kSubtract:
                return Error(left) + Error(right) + kUnit * size;
            case Operation::kMultiply:
                return Error(left) * y + Error(right) * x + kUnit * size;
            case Operation::kDivide:
                return (Error(left) + size * Error(right)) / y + kUnit * size;
            case Operation::kPower:
                return x == 0.0 ? 0.0
                                : size * (y * Error(left) / x + std::abs(std::log(x)) * Error(right) + 2.0 * kUnit);
            default:
                return 0.0;
        }
    }
    bool IsActive(Value node) const { return m_gradient.m_nodes[node].isActive; }
    bool IsOwn(const FormulaStep& step) const {
        const FormulaProgram& program = m_gradient.m_program;
        return &step >= program.steps.data() + program.firstOwn;
    }
    void AddBend(const FormulaStep& step, Value left, Value right) {
        if (IsOwn(step)) m_gradient.m_bends.push_back({left, right});
    }

    Value NextNode() const { return static_cast<Value>(m_gradient.m_nodes.size()); }
    Value Add(const FormulaStep& step, double result, std::uint32_t left, std::uint32_t right, bool isActive,
              double error) {
        const Value node = NextNode();
        m_gradient.m_nodes.push_back(
            {result, error, 0.0, 0.0, &step, left, right, isActive && !GivesTruth(step.operation)});
        return node;
    }

    FormulaGradient& m_gradient;
    DoubleArithmetic m_arithmetic;
    std::span<const double> m_values;
    std::span<const unsigned char> m_isActive;
    std::vector<double> m_numbers;
};

FormulaGradient::FormulaGradient(const FormulaProgram& program, std::pmr::memory_resource* memory)
    : m_program(program),
      m_nodes(memory),
      m_operands(memory),
      m_partials(program.variables.size(), memory),
      m_bends(memory),
      m_roundings(memory),
      m_noises(program.variables.size(), memory) {
    m_nodes.reserve(program.steps.size());
}

double FormulaGradient::Evaluate(std::span<const double> values, std::span<const unsigned char> isActive) {
    m_nodes.clear();
    m_operands.clear();
    m_bends.clear();
    m_roundings.clear();
    m_hasUnderflow = false;
    Recording recording(*this, values, isActive);
    const std::uint32_t result = FormulaMachine(m_program, recording).Run();
    std::ranges::fill(m_partials, 0.0);
    m_error = m_nodes[result].error;
    m_nodes[result].adjoint = 1.0;
    GoBackwards();
    for (Rounding& rounding : m_roundings) rounding.derivative = m_nodes[rounding.rounded].adjoint;
    return m_nodes[result].value;
}

double FormulaGradient::DifferentiateBend(const Bend& bend) {
    for (Node& node : m_nodes) node.adjoint = node.noise = 0.0;
    std::ranges::fill(m_partials, 0.0);
    double difference = m_nodes[bend.left].value;
    m_nodes[bend.left].adjoint = 1.0;
    if (bend.right != kZero) {
        difference -= m_nodes[bend.right].value;
        m_nodes[bend.right].adjoint = -1.0;
    }
    GoBackwards();
    return difference;
}

void FormulaGradient::NoteUnderflow(double value, bool isNotZero) {
    m_hasUnderflow |= isNotZero && std::abs(value) < std::numeric_limits<double>::min();
}

void FormulaGradient::GoBackwards() {
    std::ranges::fill(m_noises, 0.0);
    for (auto node = m_nodes.rbegin(); node != m_nodes.rend(); ++node) {
        if (!node->isActive || node->adjoint == 0.0) continue;
        const Operation operation = node->step->operation;
        if (operation == Operation::kVariable) {
            m_partials[node->step->index] += node->adjoint;
            m_noises[node->step->index] += node->noise + kUnit * std::abs(m_partials[node->step->index]);
        } else if (TakesOne(operation)) {
            PassOne(*node);
        } else if (TakesTwo(operation)) {
            PassTwo(*node);
        } else {
            PassMany(*node);
        }
    }
    for (std::size_t slot = 0; slot < m_partials.size(); ++slot)
        if (std::abs(m_partials[slot]) <= m_noises[slot] && std::isfinite(m_noises[slot])) m_partials[slot] = 0.0;
}

void FormulaGradient::Pass(const Node& node, Node& operand, double derivative, double error) {
    if (!operand.isActive) return;
    NoteUnderflow(derivative, derivative != 0.0);
    NoteUnderflow(node.adjoint * derivative, derivative != 0.0);
    const double adjoint = operand.adjoint + node.adjoint * derivative;
    if (!std::isfinite(adjoint)) {
        const auto kind = std::isfinite(derivative) ? Kind::kTooLarge : Kind::kUndefined;
        throw FormulaError{kind, node.step->position, node.step->length, {}, {}, {}};
    }
    operand.adjoint = adjoint;
    const double size = std::abs(derivative);
    operand.noise += node.noise * size + std::abs(node.adjoint) * (error + kUnit * size) + kUnit * std::abs(adjoint);
}

void FormulaGradient::PassOne(const Node& node) {
    Node& operand = m_nodes[node.left];
    const double x = operand.value;
    const double inverse = (operand.error / std::abs(x) + 3.0 * kUnit) / std::abs(x);  // error of 1 / x
    switch (node.step->operation) {
        case Operation::kNegate:
            return Pass(node, operand, -1.0, 0.0);
        case Operation::kAbs:
            return Pass(node, operand, x < 0.0 ? -1.0 : 1.0, 0.0);
        case Operation::kSqrt:
            return Pass(node, operand, 0.5 / node.value, 0.5 / node.value * (node.error / node.value + kUnit));
        case Operation::kExp:
            return Pass(node, operand, node.value, node.error);
        case Operation::kLn:
            return Pass(node, operand, 1.0 / x, inverse);
        case Operation::kLog10:
            return Pass(node, operand, 1.0 / (x * std::numbers::ln10), inverse);
        case Operation::kLog2:
            return Pass(node, operand, 1.0 / (x * std::numbers::ln2), inverse);
        default:  // round
            return Pass(node, operand, 1.0, 0.0);
    }
}

void FormulaGradient::PassTwo(const Node& node) {
    Node& left = m_nodes[node.left];
    Node& right = m_nodes[node.right];
    const double x = left.value, y = right.value;
    const double relativeOfRight = right.error / std::abs(y);
    const double logarithm = x == 0.0 ? 0.0 : std::abs(std::log(std::abs(x)));
    const double relativeOfLeft = x == 0.0 ? 0.0 : left.error / std::abs(x);
    switch (node.step->operation) {
        case Operation::kAdd:
        case Operation::kSubtract:
            Pass(node, left, 1.0, 0.0);
            return Pass(node, right, node.step->operation == Operation::kAdd ? 1.0 : -1.0, 0.0);
        case Operation::kMultiply:
            Pass(node, left, y, right.error);
            return Pass(node, right, x, left.error);
        case Operation::kDivide:
            Pass(node, left, 1.0 / y, (relativeOfRight + kUnit) / std::abs(y));
            NoteUnderflow(node.value / y, right.isActive && node.value != 0.0);
            if (right.isActive)
                Pass(node, right, -node.value / y,
                     (node.error + std::abs(node.value) * (relativeOfRight + kUnit)) / std::abs(y));
            return;
        default:  // power
            if (left.isActive) {
                const double derivative = y * std::pow(x, y - 1.0);
                NoteUnderflow(derivative, x != 0.0 && y != 0.0);
                Pass(node, left, derivative,
                     std::abs(derivative) * (std::abs(y - 1.0) * relativeOfLeft + relativeOfRight +
                                             logarithm * right.error + 4.0 * kUnit));
            }
            if (right.isActive)
                Pass(node, right, x == 0.0 ? 0.0 : node.value * std::log(x),
                     node.error * logarithm + std::abs(node.value) * (relativeOfLeft + 2.0 * kUnit * logarithm));
    }
}

void FormulaGradient::PassMany(const Node& node) {
    const FormulaStep& step = *node.step;
    const std::span operands(&m_operands[node.left], step.index);
    const bool isChoice = step.operation == Operation::kMin || step.operation == Operation::kMax;
    double shares = step.operation == Operation::kMean ? step.index : 1.0;
    if (isChoice) {
        shares = 0.0;
        for (std::uint32_t i = 0; i < step.index; ++i) shares += m_nodes[operands[i]].value == node.value ? 1.0 : 0.0;
    }
    for (std::uint32_t i = 0; i < step.index; ++i) {
        Node& operand = m_nodes[operands[i]];
        if (!isChoice || operand.value == node.value) Pass(node, operand, 1.0 / shares, kUnit / shares);
    }
}

}  // namespace qel
