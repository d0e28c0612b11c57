#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_program.h"

namespace qel {

/// Carries out a program in double, step by step, with the place of what goes wrong.
/// @param values by position in the scope
/// @return yes is 1 and no is 0
std::optional<double> EvaluatePlainly(const FormulaProgram& program, std::span<const double> values,
                                      FormulaError& error);

/// The same program in a form that is carried out fast: an operation takes numbers and variables without the stack.
/// Where anything is not finite or not defined, or the program is very long, it gives up, and EvaluatePlainly finds the
/// place.
class FastFormula {
public:
    struct Step;
    union Operand {
        double number = 0.0;
        std::uint32_t index;  // of a variable, how many operands, or how far below the top
    };
    struct Step {
        double (*run)(const Step* step, const double* values, double* below, double top);
        Operand left, right;
        const Step* target;        // of a jump
        const RoundingRule* rule;  // of a rounding
    };

    explicit FastFormula(const FormulaProgram& program);
    FastFormula(FastFormula&&) = default;  // steps stay where they are

    /// @param values by position in the scope; one for each that the program names
    /// @return NaN where EvaluatePlainly has to look
    double Evaluate(const double* values) const;

private:
    void AddStep(const FormulaProgram& program, const FormulaStep& step, std::size_t firstFree);
    double EvaluateWithOthers(const double* values) const;

    std::vector<Step> m_steps;
    std::vector<RoundingRule> m_rules;
    std::size_t m_stack = 0;
    std::size_t m_others = 0;  // results at the bottom of the stack
};

/// The value of a constant, by its position in FormulaConstants().
double ConstantValue(std::size_t index);

/// @p value by a rule, from its shortest text and to the nearest double. NaN where the rule cannot.
double Rounded(double value, const RoundingRule& rule);

}  // namespace qel
