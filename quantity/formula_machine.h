#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>
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
    FormulaMachine(const FormulaMachine&) = delete;
    FormulaMachine& operator=(const FormulaMachine&) = delete;

    /// @throws FormulaError
    Value Run() {
        for (std::size_t at = 0; at < m_program.steps.size();) {
            const FormulaStep& step = m_program.steps[at];
            if (step.operation >= FormulaOperation::kAndThen) {
                at = After(at, step);
                continue;
            }
            Compute(step);
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

    // The step that follows a jump, or a value that is there already.
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
            case FormulaOperation::kEarlier:
                m_stack.push_back(*(m_stack.end() - 1 - static_cast<std::ptrdiff_t>(jump.index)));
                return at + 1;
            default:
                return jump.index;
        }
    }

    void Compute(const FormulaStep& step) {
        if (TakesOne(step.operation)) {
            m_stack.back() = m_arithmetic.One(step, m_stack.back());
        } else if (TakesTwo(step.operation)) {
            Value& left = *(m_stack.end() - 2);
            left = m_arithmetic.Two(step, left, m_stack.back());
            m_stack.pop_back();
        } else if (TakesMany(step.operation)) {
            const auto first = m_stack.end() - static_cast<std::ptrdiff_t>(step.index);
            *first = m_arithmetic.Many(step, std::span<const Value>(first, m_stack.end()));
            m_stack.erase(first + 1, m_stack.end());
        } else {
            m_stack.push_back(m_arithmetic.Start(step));
        }
    }

    static constexpr std::size_t kUsual = 12;  // values on the stack; more take memory

    alignas(Value) std::array<std::byte, kUsual * sizeof(Value)> m_memory;
    std::pmr::monotonic_buffer_resource m_resource{m_memory.data(), m_memory.size()};
    std::pmr::vector<Value> m_stack{&m_resource};
    const FormulaProgram& m_program;
    Arithmetic& m_arithmetic;
};

}  // namespace qel
