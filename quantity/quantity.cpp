#include "qellib10/quantity/quantity.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "qellib10/quantity/calculation.h"
#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/uncertain_constants.h"
#include "qellib10/quantity/uncertainty_propagation.h"
#include "qellib10/quantity/uncertainty_statement.h"
#include "qellib10/quantity/value_text.h"

namespace qel {
namespace {

// The quantity as the only variable of the formula that is itself.
std::optional<UncertaintyBudget> BudgetOf(const Quantity& quantity) {
    static const Formula itself = [] {
        FormulaScope scope;
        scope.Add("x");
        FormulaError error;
        return Formula::Parse("x", scope, error).value();
    }();
    const UncertainInput input{"x", quantity.value.ToDouble(), quantity.components};
    FormulaError error;
    return PropagateUncertainty(itself, std::span(&input, 1), {}, error);
}

}  // namespace

std::optional<Quantity> Quantity::Of(std::string_view text, std::vector<UncertaintyComponent> components,
                                     std::string& error) {
    const std::optional<CalculationInput> input = CalculationInput::Of("", text);
    if (!input || !input->reading.IsValue()) {
        error = input ? std::string() : CalculationInput::WhyNot(text);
        if (error.empty()) error = "a quantity starts with a number";
        return {};
    }
    const std::optional<Unit> unit = Unit::Parse(input->unit, error);
    if (!unit) return {};
    return Quantity{input->reading.value, *unit, std::move(components)};
}

std::optional<double> Quantity::StandardUncertainty() const {
    const std::optional<UncertaintyBudget> budget = BudgetOf(*this);
    return budget ? std::optional(budget->uncertainty) : std::nullopt;
}

std::optional<double> Quantity::DegreesOfFreedom() const {
    const std::optional<UncertaintyBudget> budget = BudgetOf(*this);
    return budget ? budget->degreesOfFreedom : std::nullopt;
}

std::optional<Quantity> Quantity::In(const Unit& other, const std::optional<Decimal>& molarMass) const {
    DecimalFlags flags;
    const std::optional<Decimal> converted = Convert(value, unit, other, flags, molarMass);
    // A difference of one unit: an offset is no part of an uncertainty.
    const std::optional<Decimal> zero = Convert(Decimal(0), unit, other, flags, molarMass),
                                 one = Convert(Decimal(1), unit, other, flags, molarMass);
    if (!converted || !zero || !one || !converted->IsFinite()) return {};
    const double factor = Subtract(*one, *zero, flags).ToDouble();
    Quantity result{*converted, other, components};
    for (UncertaintyComponent& component : result.components) {
        component.stated *= std::abs(factor);
        const std::optional<UncertaintyComponent> scaled = OfItsStatement(component);
        if (!scaled) return {};
        component = *scaled;
    }
    return result;
}

std::string Quantity::Text() const {
    const std::string text = value.Text();
    return unit.IsNumber() ? text : text + AfterValue(unit.Text());
}

std::optional<QuantityResult> EvaluateQuantities(const Formula& formula, std::span<const Quantity> quantities,
                                                 const std::optional<Unit>& wanted, const UncertaintyOptions& options,
                                                 FormulaError& error) {
    std::vector<Unit> units;
    std::vector<Reading> readings;
    std::vector<UncertainInput> inputs;
    for (const Quantity& quantity : quantities) {
        units.push_back(quantity.unit);
        readings.push_back(Reading::Of(quantity.value));
        inputs.push_back({"", quantity.value.ToDouble(), quantity.components});
    }
    const std::optional<QuantityFormula> bound = QuantityFormula::Bind(formula, units, wanted, error);
    if (!bound) return {};
    std::optional<ExactResult> exact = bound->EvaluateExactly(readings, {}, error);
    if (!exact) return {};
    QuantityResult result{*std::move(exact), bound->ResultUnit(), {}};
    const bool isUncertain = HasUncertainConstants(ProgramOf(formula)) ||
                             std::ranges::any_of(formula.Variables(), [&](std::size_t position) {
                                 return !quantities[position].components.empty();
                             });
    if (!isUncertain || bound->IsCondition()) return result;
    result.budget = bound->Propagate(inputs, options, error);
    if (!result.budget) return {};
    const bool isLost = std::ranges::any_of(
        formula.Variables(), [&](std::size_t position) { return IsLostInDouble(quantities[position].value); });
    if (isLost && result.budget->uncertainty < kLeastCertain) {
        error = {FormulaError::Kind::kUncertainty, 0, 0, "numbers below 1E-308", {}, {}};
        return {};
    }
    return result;
}

}  // namespace qel
