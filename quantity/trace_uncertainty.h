#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/formula_set.h"
#include "qellib10/quantity/quantity_formula.h"
#include "qellib10/quantity/trace.h"

namespace qel {

/// The uncertainties of the formulas of a trace, each after those that it needs. To first order each result is an input
/// of the formulas that name it, with its uncertainty by source, so that what two of them have in common stays
/// correlated. Trials are drawn of the inputs, for all formulas at once, and so are coefficients between inputs.
class TraceUncertainty {
public:
    /// @param set parsed; both outlive the object
    TraceUncertainty(const Calculation& calculation, const FormulaSet& set);

    /// Puts a budget into the part of a formula, or why it has none; neither where nothing is uncertain.
    /// @param bound the same with its units
    /// @param readings by position in the scope
    /// @param position of its result there, for the formulas that use it; nothing where none can
    void Propagate(const Formula& formula, const QuantityFormula& bound, std::span<const Reading> readings,
                   std::optional<std::size_t> position, TracePart& part);
    /// Trials of the formula of the result, where each of those that it needs was propagated.
    std::optional<MonteCarloResult> Try(const QuantityFormula& result, const MonteCarloOptions& options,
                                        FormulaError& error) const;

private:
    UncertainInput UncertainOf(const CalculationInput& input);
    bool HasUncertainty(const Formula& formula) const;
    std::string ReasonAgainst(const Formula& formula, std::span<const Reading> readings) const;
    std::optional<UncertaintyBudget> BudgetOf(const QuantityFormula& bound, std::string& reason,
                                              const std::string& text, std::vector<double>& steps) const;
    void PutIn(const TracePart& part, std::size_t position);
    // What each rounding of this formula, and of those that it uses, adds to its result.
    using Steps = std::map<std::size_t, double>;  // by number of the rounding
    Steps StepsOf(const UncertaintyBudget& budget, std::span<const double> own);
    void ShowSources(UncertaintyBudget& budget) const;
    // The formula with all that it needs, and its inputs.
    FormulaProgram Joined(const QuantityFormula& bound) const;
    std::span<const UncertainInput> InputsOfAll() const;

    const Calculation& m_calculation;
    const FormulaSet& m_set;
    std::vector<UncertainInput> m_inputs;                 // inputs and formulas, by position in the scope
    std::vector<bool> m_isUnknown;                        // of the same: there is an uncertainty, and it is not known
    std::vector<Steps> m_steps;                           // of the same
    std::size_t m_roundings = 0;                          // that have a number
    std::vector<bool> m_isAtKink;                         // of the same: first order is not enough for it
    std::vector<std::optional<QuantityFormula>> m_bound;  // of the same, nothing for an input
    std::unordered_map<std::string, UncertaintyComponent::Distribution> m_distributions;  // by source
};

}  // namespace qel
