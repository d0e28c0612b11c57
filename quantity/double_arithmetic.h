#pragma once

#include <cmath>
#include <span>

#include "qellib10/quantity/formula_machine.h"

namespace qel {

/// The steps of a formula in double, for FormulaMachine. Not defined is NaN, too large is infinite; Check finds both.
class DoubleArithmetic {
public:
    using Value = double;

    /// @param values by position in the scope
    DoubleArithmetic(const FormulaProgram& program, std::span<const double> values)
        : m_program(program), m_values(values) {}

    double Start(const FormulaStep& step) const;
    double One(const FormulaStep& step, double value) const;
    static double Two(const FormulaStep& step, double left, double right) {
        switch (step.operation) {
            case FormulaOperation::kAdd:
                return left + right;
            case FormulaOperation::kSubtract:
                return left - right;
            case FormulaOperation::kMultiply:
                return left * right;
            case FormulaOperation::kDivide:
                if (right == 0.0) RefuseDivision(step);
                return left / right;
            default:
                return SeldomTwo(step.operation, left, right);
        }
    }
    static double Many(const FormulaStep& step, std::span<const double> values);
    static Truth TruthOf(double value) { return value == 0.0 ? Truth::kNo : Truth::kYes; }
    static double Undecided(double condition) { return condition; }  // never: each condition is decided
    static void Check(const FormulaStep& step, double value) {
        if (!std::isfinite(value)) [[unlikely]]
            RefuseResult(step, value);
    }

private:
    static double SeldomTwo(FormulaOperation operation, double left, double right);
    [[noreturn]] static void RefuseDivision(const FormulaStep& step);
    [[noreturn]] static void RefuseResult(const FormulaStep& step, double value);

    const FormulaProgram& m_program;
    std::span<const double> m_values;
};

}  // namespace qel
