#pragma once

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
    static double Two(const FormulaStep& step, double left, double right);
    static double Many(const FormulaStep& step, std::span<const double> values);
    static Truth TruthOf(double value) { return value == 0.0 ? Truth::kNo : Truth::kYes; }
    static double Undecided(double condition) { return condition; }  // never: each condition is decided
    static void Check(const FormulaStep& step, double value);

private:
    const FormulaProgram& m_program;
    std::span<const double> m_values;
};

}  // namespace qel
