#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/quantity/formula_columns.h"
#include "qellib10/quantity/formula_double.h"
#include "qellib10/quantity/uncertainty_sources.h"

namespace qel {

/// How blocks of trials are drawn and evaluated. What a block gives depends on the seed and its number alone.
class TrialPlan {
public:
    static constexpr std::size_t kRows = ColumnFormula::kRows;  // trials of a block

    /// The objects must outlive it.
    TrialPlan(const FormulaProgram& program, const UncertaintySources& sources, std::uint64_t seed);

    /// What a thread works with.
    class Workspace {
    public:
        explicit Workspace(const TrialPlan& plan);

        /// @param results kRows values; NaN for a trial where the formula is not defined
        void Run(std::uint64_t block, double* results);

    private:
        double* Input(std::size_t slot) { return m_columns ? m_columns->Input(slot) : &m_inputs[slot * kRows]; }
        void Draw(std::uint64_t block);
        void EvaluateOneByOne(double* results);

        const TrialPlan& m_plan;
        std::optional<ColumnFormula> m_columns;
        std::vector<double> m_inputs;  // where there are no columns of a formula
        std::vector<double> m_row;
        std::vector<double> m_deviates;
    };

private:
    const FormulaProgram& m_program;
    const UncertaintySources& m_sources;
    std::uint64_t m_seed;
    std::vector<UncertaintySources::Share> m_shares;  // by source
    FormulaProgram m_bySlot;                          // whose variables are at the positions of their slots
    FastFormula m_fast;
};

}  // namespace qel
