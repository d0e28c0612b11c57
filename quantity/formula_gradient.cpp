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

// Carries out the steps for FormulaMachine, whose values are nodes, by their positions.
class FormulaGradient::Recording {
public:
    using Value = std::uint32_t;

    Recording(FormulaGradient& gradient, std::span<const double> values, std::span<const unsigned char> isActive)
        : m_gradient(gradient), m_arithmetic(gradient.m_program, {}), m_values(values), m_isActive(isActive) {}

    Value Start(const FormulaStep& step) {
        if (step.operation == Operation::kVariable)
            return Add(step, m_values[step.index], 0, 0, m_isActive[step.index] != 0);
        const double value = m_arithmetic.Start(step);
        if (step.operation == Operation::kNumber)
            m_gradient.NoteUnderflow(value, !m_gradient.m_program.numbers[step.index].value.IsZero());
        return Add(step, value, 0, 0, false);
    }

    Value One(const FormulaStep& step, Value operand) {
        const double result = m_arithmetic.One(step, Number(operand));
        if (step.operation == Operation::kAbs && IsActive(operand)) AddBend(step, operand, kZero);
        if (step.operation == Operation::kRound && IsActive(operand))
            m_gradient.m_roundings.push_back({operand, NextNode(), step.index, IsOwn(step)});
        m_gradient.NoteUnderflow(result, step.operation == Operation::kExp && IsActive(operand));
        return Add(step, result, operand, operand, IsActive(operand));
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
        return Add(step, result, left, right, isActive);
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
        return Add(step, result, first, first, isActive);
    }

    Truth TruthOf(Value node) const { return DoubleArithmetic::TruthOf(Number(node)); }
    static Value Undecided(Value condition) { return condition; }  // never: each condition is decided
    void Check(const FormulaStep& step, Value node) const { DoubleArithmetic::Check(step, Number(node)); }

private:
    double Number(Value node) const { return m_gradient.m_nodes[node].value; }
    bool IsActive(Value node) const { return m_gradient.m_nodes[node].isActive; }
    bool IsOwn(const FormulaStep& step) const {
        const FormulaProgram& program = m_gradient.m_program;
        return &step >= program.steps.data() + program.firstOwn;
    }
    void AddBend(const FormulaStep& step, Value left, Value right) {
        if (IsOwn(step)) m_gradient.m_bends.push_back({left, right});
    }

    Value NextNode() const { return static_cast<Value>(m_gradient.m_nodes.size()); }
    Value Add(const FormulaStep& step, double result, std::uint32_t left, std::uint32_t right, bool isActive) {
        const Value node = NextNode();
        m_gradient.m_nodes.push_back({result, 0.0, &step, left, right, isActive && !GivesTruth(step.operation)});
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
      m_roundings(memory) {
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
    m_nodes[result].adjoint = 1.0;
    GoBackwards();
    for (Rounding& rounding : m_roundings) rounding.derivative = m_nodes[rounding.rounded].adjoint;
    return m_nodes[result].value;
}

double FormulaGradient::DifferentiateBend(const Bend& bend) {
    for (Node& node : m_nodes) node.adjoint = 0.0;
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
    for (auto node = m_nodes.rbegin(); node != m_nodes.rend(); ++node) {
        if (!node->isActive || node->adjoint == 0.0) continue;
        const Operation operation = node->step->operation;
        if (operation == Operation::kVariable) {
            m_partials[node->step->index] += node->adjoint;
        } else if (TakesOne(operation)) {
            PassOne(*node);
        } else if (TakesTwo(operation)) {
            PassTwo(*node);
        } else {
            PassMany(*node);
        }
    }
}

void FormulaGradient::Pass(const Node& node, Node& operand, double derivative) {
    if (!operand.isActive) return;
    NoteUnderflow(derivative, derivative != 0.0);
    NoteUnderflow(node.adjoint * derivative, derivative != 0.0);
    const double adjoint = operand.adjoint + node.adjoint * derivative;
    if (!std::isfinite(adjoint)) {
        const auto kind = std::isfinite(derivative) ? Kind::kTooLarge : Kind::kUndefined;
        throw FormulaError{kind, node.step->position, node.step->length, {}, {}, {}};
    }
    operand.adjoint = adjoint;
}

void FormulaGradient::PassOne(const Node& node) {
    Node& operand = m_nodes[node.left];
    const double x = operand.value;
    switch (node.step->operation) {
        case Operation::kNegate:
            return Pass(node, operand, -1.0);
        case Operation::kAbs:
            return Pass(node, operand, x < 0.0 ? -1.0 : 1.0);
        case Operation::kSqrt:
            return Pass(node, operand, 0.5 / node.value);
        case Operation::kExp:
            return Pass(node, operand, node.value);
        case Operation::kLn:
            return Pass(node, operand, 1.0 / x);
        case Operation::kLog10:
            return Pass(node, operand, 1.0 / (x * std::numbers::ln10));
        case Operation::kLog2:
            return Pass(node, operand, 1.0 / (x * std::numbers::ln2));
        default:  // round
            return Pass(node, operand, 1.0);
    }
}

void FormulaGradient::PassTwo(const Node& node) {
    Node& left = m_nodes[node.left];
    Node& right = m_nodes[node.right];
    const double x = left.value, y = right.value;
    switch (node.step->operation) {
        case Operation::kAdd:
        case Operation::kSubtract:
            Pass(node, left, 1.0);
            return Pass(node, right, node.step->operation == Operation::kAdd ? 1.0 : -1.0);
        case Operation::kMultiply:
            Pass(node, left, y);
            return Pass(node, right, x);
        case Operation::kDivide:
            Pass(node, left, 1.0 / y);
            NoteUnderflow(node.value / y, right.isActive && node.value != 0.0);
            if (right.isActive) Pass(node, right, -node.value / y);
            return;
        default:  // power
            if (left.isActive) {
                const double derivative = y * std::pow(x, y - 1.0);
                NoteUnderflow(derivative, x != 0.0 && y != 0.0);
                Pass(node, left, derivative);
            }
            if (right.isActive) Pass(node, right, x == 0.0 ? 0.0 : node.value * std::log(x));
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
        if (!isChoice || operand.value == node.value) Pass(node, operand, 1.0 / shares);
    }
}

}  // namespace qel
