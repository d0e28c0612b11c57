#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qellib10/quantity/formula_program.h"

namespace qel {

/// A program carried out for many trials at once: each step goes over a column of them, so that what it costs to find
/// the next step is shared, and the processor can take several trials together. The results have the same bits as those
/// of EvaluatePlainly.
///
/// Each thread has its own object, since the columns are in it.
class ColumnFormula {
public:
    static constexpr std::size_t kRows = 256;

    /// Whether a program can be carried out so: it has no conditions, in which trials would part, and is not very long.
    static bool Fits(const FormulaProgram& program);

    /// @param program one that fits
    explicit ColumnFormula(const FormulaProgram& program);

    /// The column of a variable, by slot: kRows values, which the caller writes.
    double* Input(std::size_t slot) { return Column(slot); }

    /// @param results kRows values; NaN where the formula is not defined
    void Evaluate(double* results);

private:
    struct Step {
        FormulaOperation operation;
        std::size_t result, left, right;    // columns
        std::vector<std::size_t> operands;  // of min, max, mean, sum
        std::uint32_t rule;
    };

    double* Column(std::size_t index) { return m_columns.data() + index * kRows; }
    void CarryOutOne(const Step& step, double* result, const double* operand);
    void CarryOutMany(const Step& step, double* result);

    std::vector<RoundingRule> m_rules;
    std::size_t m_inputs;
    std::vector<Step> m_steps;
    std::vector<double> m_columns;  // inputs, numbers, results of steps
    std::size_t m_last = 0;         // the column of the whole
};

}  // namespace qel
