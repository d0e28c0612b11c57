#pragma once

#include <optional>
#include <string>
#include <vector>

#include "qellib10/quantity/formula_set.h"
#include "qellib10/quantity/quantity_formula.h"
#include "qellib10/quantity/trace.h"
#include "qellib10/quantity/trace_uncertainty.h"

namespace qel {

/// Fills a trace, formula by formula: each result is an input of the formulas that name it.
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
    std::optional<QuantityFormula> Bind(const CalculationFormula& source, const Formula& formula, TracePart& part);
    void Fail(const CalculationFormula& formula, const FormulaError& error);
    const CalculationFormula& SourceOf(std::size_t formula) const;

    Trace& m_trace;
    unsigned m_threads;
    FormulaSet m_set;
    std::vector<Reading> m_readings;      // of inputs and formulas, by position in the scope
    std::vector<Unit> m_units;            // of the same
    std::size_t m_steps = 0, m_rows = 0;  // of all parts
    bool m_hasUnits = false;              // any of the inputs, constants and other formulas
    std::optional<TraceUncertainty> m_uncertainty;
    std::optional<QuantityFormula> m_result;  // the formula of the result
};

}  // namespace qel
