#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/monte_carlo.h"
#include "qellib10/quantity/unit.h"

namespace qel {

/// A formula whose variables have units: dimensions are checked once, and where units differ by a factor the
/// conversions are steps of the evaluation. It prevents the result in mg/mL that a report calls mg/L.
///
///     +  -  min max mean sum if      the right operand, or the later argument, is converted to the unit of the first
///     exp ln log10 log2              need a number or a ratio
///     ^                              of a unit needs an exponent that is written as a whole number or a half
///     numbers in the formula         have the unit 1, but 0 has any
///     °C                             °C - °C is a difference in K, °C + K is °C; all else with °C is an error
///
/// A value; copies share what was checked, which never changes, so any thread may evaluate it.
class QELLIB10_API QuantityFormula {
public:
    /// @param units of the variables, by position in the scope; one for each that the formula names
    /// @param wanted unit of the result; without one it is what follows from the formula
    /// @return nothing where dimensions differ; @p error has the place of the operator
    static std::optional<QuantityFormula> Bind(const Formula& formula, std::span<const Unit> units,
                                               const std::optional<Unit>& wanted, FormulaError& error);
    /// The formula as it is, for numbers whose units nobody knows.
    static QuantityFormula WithoutUnits(const Formula& formula);

    const Unit& ResultUnit() const noexcept;  ///< 1 of a condition
    bool IsCondition() const noexcept;

    /// As Formula::EvaluateExactly; readings are in the units of the variables, the result in ResultUnit().
    std::optional<ExactResult> EvaluateExactly(std::span<const Reading> readings, const ExactOptions& options,
                                               FormulaError& error, std::vector<ExactStep>* steps = nullptr) const;
    /// As PropagateUncertainty of a formula.
    std::optional<UncertaintyBudget> Propagate(std::span<const UncertainInput> inputs,
                                               const UncertaintyOptions& options, FormulaError& error) const;
    /// As PropagateDistributions of a formula.
    std::optional<MonteCarloResult> Try(std::span<const UncertainInput> inputs, const MonteCarloOptions& options,
                                        FormulaError& error) const;

private:
    struct Bound;
    friend const FormulaProgram& ProgramOf(const QuantityFormula& formula);
    explicit QuantityFormula(std::shared_ptr<const Bound> bound) : m_bound(std::move(bound)) {}

    std::shared_ptr<const Bound> m_bound;
};

}  // namespace qel
