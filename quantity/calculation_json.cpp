#include "qellib10/quantity/calculation_json.h"

#include <cmath>

#include "qellib10/quantity/calculation_words.h"

namespace qel {
namespace {

JsonValue JsonOf(const CalculationFormula& formula) {
    JsonValue json = JsonValue::Object();
    json.Set("name", JsonValue::Text(formula.name)).Set("formula", JsonValue::Text(formula.formula));
    if (!formula.unit.empty()) json.Set("unit", JsonValue::Text(formula.unit));
    return json;
}

JsonValue JsonOf(const UncertaintyComponent& component) {
    JsonValue json = JsonValue::Object();
    if (!component.source.empty()) json.Set("source", JsonValue::Text(component.source));
    json.Set("evaluation", JsonValue::Text(NameIn(kEvaluationWords, component.evaluation)))
        .Set("distribution", JsonValue::Text(NameIn(kDistributionWords, component.distribution)))
        .Set("stated", JsonValue::Number(component.stated))
        .Set("factor", JsonValue::Number(component.factor))
        .Set("uncertainty", JsonValue::Number(component.uncertainty));
    const bool isInfinite = std::isinf(component.degreesOfFreedom);
    json.Set("degreesOfFreedom",
             isInfinite ? JsonValue::Text(kInfiniteWord) : JsonValue::Number(component.degreesOfFreedom));
    return json;
}

JsonValue JsonOf(const InputCorrelation& correlation) {
    return JsonValue::Object()
        .Set("first", JsonValue::Number(static_cast<std::int64_t>(correlation.first)))
        .Set("second", JsonValue::Number(static_cast<std::int64_t>(correlation.second)))
        .Set("coefficient", JsonValue::Number(correlation.coefficient));
}

JsonValue JsonOf(const CalculationInput& input);

template <class Values> JsonValue ListOf(const Values& values) {
    JsonValue list = JsonValue::List();
    for (const auto& value : values) list.items.push_back(JsonOf(value));
    return list;
}

JsonValue JsonOf(const CalculationInput& input) {
    JsonValue json = JsonValue::Object();
    json.Set("name", JsonValue::Text(input.name)).Set("reading", JsonValue::Text(input.reading.Text()));
    if (input.reading.isInexact) json.Set("isInexact", JsonValue::Boolean(true));
    if (input.reading.isComputed) json.Set("isComputed", JsonValue::Boolean(true));
    if (input.reading.isFromBinary) json.Set("isFromBinary", JsonValue::Boolean(true));
    if (input.reading.beforeRounding) json.Set("beforeRounding", JsonValue::Text(input.reading.beforeRounding->Text()));
    if (input.reading.places) json.Set("roundedByListTo", JsonValue::Number(std::int64_t{*input.reading.places}));
    if (!input.unit.empty()) json.Set("unit", JsonValue::Text(input.unit));
    if (!input.origin.empty()) json.Set("origin", JsonValue::Text(input.origin));
    if (!input.components.empty()) json.Set("uncertainties", ListOf(input.components));
    return json;
}

JsonValue JsonOf(const UncertaintyOptions& options) {
    JsonValue json = JsonValue::Object();
    if (options.coverageFactor)
        json.Set("factor", JsonValue::Number(*options.coverageFactor));
    else
        json.Set("probability", JsonValue::Number(options.coverageProbability));
    if (!options.correlations.empty()) json.Set("correlations", ListOf(options.correlations));
    return json;
}

JsonValue JsonOf(const ResultLimits& limits) {
    JsonValue json = JsonValue::Object();
    if (limits.lower) json.Set("lower", JsonValue::Text(limits.lower->Text()));
    if (limits.upper) json.Set("upper", JsonValue::Text(limits.upper->Text()));
    return json.Set("rule", JsonValue::Text(limits.rule.Name()))
        .Set("compares", JsonValue::Text(limits.comparesRounded ? kRoundedWord : kUnroundedWord));
}

}  // namespace

JsonValue JsonOf(const Calculation& calculation) {
    JsonValue json = JsonValue::Object();
    json.Set("result", JsonOf(calculation.result));
    if (calculation.isKept) json.Set("isKept", JsonValue::Boolean(true));
    if (!calculation.helpers.empty()) json.Set("helpers", ListOf(calculation.helpers));
    json.Set("inputs", ListOf(calculation.inputs));
    if (calculation.substitution != LimitSubstitution::kNone)
        json.Set("substitution", JsonValue::Text(NameOf(calculation.substitution)));
    if (calculation.rule) json.Set("rounding", JsonValue::Text(calculation.rule->Name()));
    json.Set("coverage", JsonOf(calculation.uncertainty));
    if (calculation.limits) json.Set("limits", JsonOf(*calculation.limits));
    if (calculation.trials > 0)
        json.Set("trials", JsonValue::Number(static_cast<std::int64_t>(calculation.trials)))
            .Set("seed", JsonValue::Text(std::to_string(calculation.seed)));
    return json;
}

}  // namespace qel
