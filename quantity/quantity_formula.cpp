#include "qellib10/quantity/quantity_formula.h"

#include <algorithm>

#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/formula_exact.h"
#include "qellib10/quantity/formula_units.h"
#include "qellib10/quantity/uncertainty_propagation.h"

namespace qel {

struct QuantityFormula::Bound {
    BoundFormula formula;
};

std::optional<QuantityFormula> QuantityFormula::Bind(const Formula& formula, std::span<const Unit> units,
                                                     const std::optional<Unit>& wanted, FormulaError& error) {
    if (std::ranges::any_of(formula.Variables(), [&](std::size_t position) { return position >= units.size(); })) {
        error = {FormulaError::Kind::kUnit, 0, formula.Text().size(), "units that are not there", {}, {}};
        return {};
    }
    std::optional<BoundFormula> bound = BindUnits(ProgramOf(formula), units, wanted, error);
    if (!bound) return {};
    return QuantityFormula(std::make_shared<const Bound>(Bound{*std::move(bound)}));
}

QuantityFormula QuantityFormula::WithoutUnits(const Formula& formula) {
    return QuantityFormula(std::make_shared<const Bound>(Bound{{ProgramOf(formula), {}}}));
}

const FormulaProgram& ProgramOf(const QuantityFormula& formula) { return formula.m_bound->formula.program; }

const Unit& QuantityFormula::ResultUnit() const noexcept { return m_bound->formula.unit; }
bool QuantityFormula::IsCondition() const noexcept { return m_bound->formula.program.isTruth; }

std::optional<ExactResult> QuantityFormula::EvaluateExactly(std::span<const Reading> readings,
                                                            const ExactOptions& options, FormulaError& error,
                                                            std::vector<ExactStep>* steps) const {
    return EvaluateProgram(m_bound->formula.program, readings, options, error, steps);
}

std::optional<UncertaintyBudget> QuantityFormula::Propagate(std::span<const UncertainInput> inputs,
                                                            const UncertaintyOptions& options,
                                                            FormulaError& error) const {
    return PropagateUncertainty(m_bound->formula.program, inputs, options, error);
}

std::optional<MonteCarloResult> QuantityFormula::Try(std::span<const UncertainInput> inputs,
                                                     const MonteCarloOptions& options, FormulaError& error) const {
    return PropagateDistributions(m_bound->formula.program, inputs, options, error);
}

}  // namespace qel
