#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "qellib10/quantity/formula_set.h"
#include "qellib10/quantity/quantity_formula.h"
#include "qellib10/quantity/trace.h"

namespace qel {

/// Fills a trace, formula by formula. Each result is an input of the formulas that name it, with its uncertainty by
/// source, so that what two of them have in common stays correlated.
class TraceComputation {
public:
    TraceComputation(Trace& trace, unsigned threads) : m_trace(trace), m_threads(threads), m_set(Scope()) {}

    void Run();

private:
    FormulaScope Scope() const;
    bool Check();
    bool AddFormulas();
    bool ReadUnits();
    std::optional<Unit> UnitOf(const std::string& name, const std::string& text);
    void Remark(const std::string& remark);
    bool Compute(const CalculationFormula& source, const Formula& formula);
    bool Bind(const CalculationFormula& source, const Formula& formula, TracePart& part);
    void Propagate(const Formula& formula, TracePart& part);
    bool HasUncertainty(const Formula& formula) const;
    std::string ReasonAgainstBudget(const Formula& formula) const;
    void PutIn(const TracePart& part, bool usesUnknown);
    void ShowSources(UncertaintyBudget& budget) const;
    UncertainInput UncertainOf(const CalculationInput& input);
    void Fail(const CalculationFormula& formula, const FormulaError& error);
    const CalculationFormula& SourceOf(std::size_t formula) const;

    Trace& m_trace;
    unsigned m_threads;
    FormulaSet m_set;
    std::vector<Reading> m_readings;       // of inputs and formulas, by position in the scope
    std::vector<UncertainInput> m_inputs;  // of the same
    std::vector<Unit> m_units;             // of the same
    std::vector<bool> m_isUnknown;         // of the same: there is an uncertainty, and it is not known
    std::vector<bool> m_isAtKink;          // of the same: first order is not enough for it
    std::size_t m_steps = 0, m_rows = 0;   // of all parts
    bool m_hasUnits = false;               // any of the inputs, constants and other formulas
    std::unordered_map<std::string, UncertaintyComponent::Distribution> m_distributions;  // by source
    std::optional<QuantityFormula> m_bound;  // of the formula that was computed last
};

}  // namespace qel
