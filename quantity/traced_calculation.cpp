#include "qellib10/quantity/traced_calculation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "qellib10/platform/text/printable_text.h"
#include "qellib10/quantity/formula_hints.h"
#include "qellib10/quantity/uncertainty_statement.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;

bool IsLimit(const Reading& reading) {
    return reading.kind == Reading::Kind::kBelow || reading.kind == Reading::Kind::kAbove;
}

void KeepWhatIsTraced(Reading& reading) {
    const bool isFinite = reading.value.IsFinite() && (!reading.beforeRounding || reading.beforeRounding->IsFinite());
    if (reading.IsValue() || IsLimit(reading)) {
        if (!isFinite) reading = {Reading::Kind::kInvalid, {}, false, false, false, false, {}, {}, {}};
    } else {
        reading.value = {};
        if (!isFinite) reading.beforeRounding.reset();
    }
    reading.isIncluded = reading.isIncluded && IsLimit(reading);
    // The input itself is why a result is no number: a position belongs to the formula that the reading was made by.
    reading.cause.reset();
}

bool IsText(const CalculationFormula& formula) {
    return IsUtf8(formula.name) && IsUtf8(formula.formula) && IsUtf8(formula.unit);
}

bool IsText(const CalculationInput& input) {
    return IsUtf8(input.name) && IsUtf8(input.unit) && IsUtf8(input.origin) &&
           std::ranges::all_of(input.components, IsUtf8, &UncertaintyComponent::source);
}

bool IsText(const Calculation& calculation) {
    return IsText(calculation.result) &&
           std::ranges::all_of(calculation.helpers, [](const CalculationFormula& each) { return IsText(each); }) &&
           std::ranges::all_of(calculation.inputs, [](const CalculationInput& each) { return IsText(each); });
}

// A person typed a formula, and wants the place.
std::optional<FormulaError> NoText(const CalculationFormula& formula) {
    const std::size_t end = EndOfUtf8(formula.formula);
    if (end == formula.formula.size() || !IsUtf8(formula.name)) return {};
    FormulaError error{Kind::kText, end, 1, {}, {}, {}};
    error.expected = formula.name + ": " + error.Text(formula.formula);
    return error;
}

bool IsAsStated(const UncertaintyComponent& component) { return OfItsStatement(component) == component; }

bool IsTraceable(const UncertaintyOptions& options) {
    const auto isPosition = [](std::size_t position) { return std::in_range<std::int64_t>(position); };
    return std::isfinite(options.coverageFactor.value_or(options.coverageProbability)) &&
           std::ranges::all_of(options.correlations, [&](const InputCorrelation& each) {
               return isPosition(each.first) && isPosition(each.second) && std::isfinite(each.coefficient);
           });
}

bool IsTraceable(const ResultLimits& limits) {
    return (!limits.lower || limits.lower->IsFinite()) && (!limits.upper || limits.upper->IsFinite()) &&
           DecisionRule::OfName(limits.rule.Name()) == limits.rule;
}

}  // namespace

Calculation AsTraced(const Calculation& calculation) {
    Calculation traced = calculation;
    for (CalculationInput& input : traced.inputs) KeepWhatIsTraced(input.reading);
    traced.uncertainty.withRows = true;
    return traced;
}

std::optional<FormulaError> ObjectionToTracing(const Calculation& calculation) {
    const auto objection = [](const char* sentence, Kind kind = Kind::kUncertainty) {
        return FormulaError{kind, 0, 0, sentence, {}, {}};
    };
    if (const auto error = NoText(calculation.result)) return error;
    for (const CalculationFormula& helper : calculation.helpers)
        if (const auto error = NoText(helper)) return error;
    if (!IsText(calculation)) return objection("a text is not UTF-8", Kind::kText);
    for (const CalculationInput& input : calculation.inputs)
        if (!std::ranges::all_of(input.components, IsAsStated))
            return objection("an uncertainty is not what its own statement gives");
    if (!IsTraceable(calculation.uncertainty))
        return objection("a coverage factor, a coverage probability or a correlation is not a finite number");
    if (calculation.rule && !calculation.rule->IsValid()) return objection("the rule of rounding is not valid");
    if (calculation.limits && !IsTraceable(*calculation.limits))
        return objection("a limit or its decision rule is not valid");
    if (!std::in_range<std::int64_t>(calculation.trials)) return objection("there are too many trials");
    return {};
}

}  // namespace qel
