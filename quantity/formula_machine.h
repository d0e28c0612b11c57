#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "qellib10/quantity/formula_program.h"

namespace qel {

enum class Truth { kNo, kYes, kUndecided };

/// Carries out a program step by step, with the values of any arithmetic. An Arithmetic provides:
///
///     Value                                        a number or a truth
///     Value Start(step)                            of a number, a constant or a variable
///     Value One(step, Value)                       of an operation with one operand
///     Value Two(step, Value left, Value right)
///     Value Many(step, std::span<const Value>)     of min, max, mean, sum
///     Truth TruthOf(const Value&)
///     Value Undecided(const Value& condition)      what if() gives where its condition is undecided
///     void Check(step, const Value&)               sees each result; throws FormulaError where it is not one
template <class Arithmetic> class FormulaMachine {
public:
    using Value = typename Arithmetic::Value;

    FormulaMachine(const FormulaProgram& program, Arithmetic& arithmetic)
        : m_program(program), m_arithmetic(arithmetic) {
        m_stack.reserve(program.stack);
    }

    /// @throws FormulaError
    Value Run() {
        for (std::size_t at = 0; at < m_program.steps.size();) {
            const FormulaStep& step = m_program.steps[at];
            if (Jumps(step.operation)) {
                at = After(at, step);
                continue;
            }
            m_stack.push_back(Computed(step));
            m_arithmetic.Check(step, m_stack.back());
            ++at;
        }
        return std::move(m_stack.back());
    }

private:
    Value Taken() {
        Value value = std::move(m_stack.back());
        m_stack.pop_back();
        return value;
    }

    // The step that follows a jump.
    std::size_t After(std::size_t at, const FormulaStep& jump) {
        const auto isTop = [&](Truth truth) { return m_arithmetic.TruthOf(m_stack.back()) == truth; };
        switch (jump.operation) {
            case FormulaOperation::kAndThen:
                return isTop(Truth::kNo) ? jump.index : at + 1;
            case FormulaOperation::kOrElse:
                return isTop(Truth::kYes) ? jump.index : at + 1;
            case FormulaOperation::kIfNot: {
                const Value condition = Taken();
                const Truth truth = m_arithmetic.TruthOf(condition);
                if (truth != Truth::kUndecided) return truth == Truth::kNo ? jump.index : at + 1;
                m_stack.push_back(m_arithmetic.Undecided(condition));
                return m_program.steps[jump.index - 1].index;  // where the first branch goes on
            }
            default:
                return jump.index;
        }
    }

    Value Computed(const FormulaStep& step) {
        if (TakesOne(step.operation)) return m_arithmetic.One(step, Taken());
        if (TakesTwo(step.operation)) {
            const Value right = Taken();
            return m_arithmetic.Two(step, Taken(), right);
        }
        if (!TakesMany(step.operation)) return m_arithmetic.Start(step);
        const std::size_t first = m_stack.size() - step.index;
        Value result = m_arithmetic.Many(step, std::span<const Value>(m_stack).subspan(first));
        m_stack.erase(m_stack.begin() + static_cast<std::ptrdiff_t>(first), m_stack.end());
        return result;
    }

    const FormulaProgram& m_program;
    Arithmetic& m_arithmetic;
    std::vector<Value> m_stack;
};

}  // namespace qel
