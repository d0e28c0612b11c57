#include "qellib10/quantity/trace_json.h"

#include <array>
#include <cmath>

#include "qellib10/quantity/calculation_json.h"
#include "qellib10/quantity/name_table.h"
#include "qellib10/quantity/traced_calculation.h"

namespace qel {
namespace {

using Kind = FormulaError::Kind;

// By kind and place a fault is compared; a later version may word its sentence otherwise.
constexpr std::array kFaults = {
    Named{Kind::kSyntax, "syntax"},       Named{Kind::kName, "name"},
    Named{Kind::kArguments, "arguments"}, Named{Kind::kType, "type"},
    Named{Kind::kTooLong, "too long"},    Named{Kind::kTooDeep, "too deep"},
    Named{Kind::kText, "text"},           Named{Kind::kDividedByZero, "division by zero"},
    Named{Kind::kUndefined, "undefined"}, Named{Kind::kTooLarge, "too large"},
    Named{Kind::kReading, "reading"},     Named{Kind::kCycle, "cycle"},
    Named{Kind::kUnit, "unit"},           Named{Kind::kUncertainty, "uncertainty"},
};

JsonValue Number(const std::optional<double>& value) {
    if (value && std::isinf(*value)) return JsonValue::Text("infinite");
    return value ? JsonValue::Number(*value) : JsonValue{};
}
JsonValue Whole(std::size_t value) { return JsonValue::Number(static_cast<std::int64_t>(value)); }

JsonValue JsonOf(const ExactStep& step) {
    JsonValue json = JsonValue::Object();
    json.Set("position", Whole(step.position))
        .Set("length", Whole(step.length))
        .Set("operation", JsonValue::Text(step.operation))
        .Set("result", JsonValue::Text(step.result));
    if (step.flags.isInexact) json.Set("isInexact", JsonValue::Boolean(true));
    if (step.flags.isTooSmall) json.Set("isTooSmall", JsonValue::Boolean(true));
    return json;
}

JsonValue JsonOf(const UncertaintyRow& row) {
    return JsonValue::Object()
        .Set("input", JsonValue::Text(row.name))
        .Set("source", JsonValue::Text(row.source))
        .Set("value", Number(row.value))
        .Set("uncertainty", Number(row.uncertainty))
        .Set("degreesOfFreedom", Number(row.degreesOfFreedom))
        .Set("sensitivity", Number(row.sensitivity))
        .Set("contribution", Number(row.contribution))
        .Set("share", Number(row.share));
}

JsonValue JsonOf(const UncertaintyBudget& budget) {
    JsonValue json = JsonValue::Object();
    json.Set("uncertainty", Number(budget.uncertainty))
        .Set("degreesOfFreedom", Number(budget.degreesOfFreedom))
        .Set("coverageFactor", Number(budget.coverageFactor))
        .Set("coverageProbability", Number(budget.coverageProbability))
        .Set("expandedUncertainty", Number(budget.expandedUncertainty));
    if (budget.isAtKink) json.Set("isAtKink", JsonValue::Boolean(true));
    JsonValue& rows = json.Set("rows", JsonValue::List()).members.back().second;
    for (const UncertaintyRow& row : budget.rows) rows.items.push_back(JsonOf(row));
    return json;
}

JsonValue JsonOf(const ExactResult& result, const std::vector<CalculationInput>& inputs) {
    JsonValue json = JsonValue::Object();
    json.Set("text", JsonValue::Text(result.Text()));
    if (result.flags.isInexact) json.Set("isInexact", JsonValue::Boolean(true));
    if (result.isFromBinary) json.Set("isFromBinary", JsonValue::Boolean(true));
    if (result.cause && *result.cause < inputs.size()) json.Set("cause", JsonValue::Text(inputs[*result.cause].name));
    return json;
}

JsonValue JsonOf(const TracePart& part, const std::vector<CalculationInput>& inputs) {
    JsonValue json = JsonValue::Object();
    json.Set("name", JsonValue::Text(part.name));
    JsonValue& steps = json.Set("steps", JsonValue::List()).members.back().second;
    for (const ExactStep& step : part.steps) steps.items.push_back(JsonOf(step));
    if (part.result) json.Set("result", JsonOf(*part.result, inputs));
    if (!part.unit.empty()) json.Set("unit", JsonValue::Text(part.unit));
    if (part.budget) json.Set("budget", JsonOf(*part.budget));
    if (!part.withoutBudget.empty()) json.Set("withoutBudget", JsonValue::Text(part.withoutBudget));
    return json;
}

JsonValue JsonOf(const TraceFault& fault) {
    return JsonValue::Object()
        .Set("name", JsonValue::Text(fault.name))
        .Set("kind", JsonValue::Text(NameIn(kFaults, fault.error.kind)))
        .Set("position", Whole(fault.error.position))
        .Set("length", Whole(fault.error.length))
        .Set("sentence", JsonValue::Text(fault.sentence));
}

JsonValue JsonOf(const ResultDecision& decision) {
    JsonValue json = JsonValue::Object();
    json.Set("isPassed", JsonValue::Boolean(decision.isPassed))
        .Set("isUndecided", JsonValue::Boolean(decision.isUndecided))
        .Set("compared", JsonValue::Text(decision.compared.Text()))
        .Set("isRounded", JsonValue::Boolean(decision.isRounded));
    if (!decision.byUncertainty) return json;
    const LimitDecision& decided = *decision.byUncertainty;
    json.Set("guardBand", Number(decided.guardBand));
    if (decided.acceptance.lower) json.Set("acceptanceLower", Number(*decided.acceptance.lower));
    if (decided.acceptance.upper) json.Set("acceptanceUpper", Number(*decided.acceptance.upper));
    return json.Set("conformity", Number(decided.conformity));
}

JsonValue JsonOf(const MonteCarloResult& trials) {
    return JsonValue::Object()
        .Set("mean", Number(trials.mean))
        .Set("uncertainty", Number(trials.uncertainty))
        .Set("low", Number(trials.symmetric.low))
        .Set("high", Number(trials.symmetric.high))
        .Set("shortestLow", Number(trials.shortest.low))
        .Set("shortestHigh", Number(trials.shortest.high))
        .Set("failed", Whole(trials.failed));
}

JsonValue JsonOf(const FirstOrderCheck& check) {
    return JsonValue::Object()
        .Set("isEnough", JsonValue::Boolean(check.isEnough))
        .Set("tolerance", Number(check.tolerance))
        .Set("lowDifference", Number(check.lowDifference))
        .Set("highDifference", Number(check.highDifference))
        .Set("isStable", JsonValue::Boolean(check.isStable));
}

}  // namespace

JsonValue OutcomeOf(const Trace& trace) {
    JsonValue json = JsonValue::Object();
    JsonValue& parts = json.Set("parts", JsonValue::List()).members.back().second;
    for (const TracePart& part : trace.Parts()) parts.items.push_back(JsonOf(part, trace.Request().inputs));
    if (trace.Fault() != nullptr) return json.Set("fault", JsonOf(*trace.Fault()));
    if (trace.Rounded()) json.Set("rounded", JsonValue::Text(trace.Rounded()->rounded.Text()));
    if (trace.RoundedUncertainty()) json.Set("roundedUncertainty", JsonValue::Text(trace.RoundedUncertainty()->Text()));
    json.Set("text", JsonValue::Text(trace.ResultWithUncertainty()));
    if (trace.Decision()) json.Set("decision", JsonOf(*trace.Decision()));
    if (trace.Trials()) json.Set("trials", JsonOf(*trace.Trials()));
    if (trace.FirstOrder()) json.Set("firstOrder", JsonOf(*trace.FirstOrder()));
    if (trace.Remarks().empty()) return json;
    JsonValue& remarks = json.Set("remarks", JsonValue::List()).members.back().second;
    for (const std::string& remark : trace.Remarks()) remarks.items.push_back(JsonValue::Text(remark));
    return json;
}

std::string Trace::Json() const {
    if (ObjectionToTracing(m_calculation)) return {};
    std::string json = JsonValue::Object()
                           .Set("format", JsonValue::Text(kTraceFormat))
                           .Set("engine", JsonValue::Text(m_engine))
                           .Set("calculation", JsonOf(m_calculation))
                           .Set("outcome", OutcomeOf(*this))
                           .Dump();
    // Each value has two bytes at least, so that a shorter text never has too many of them.
    std::string ignored;
    if (json.size() > 2 * JsonValue::kMostValues && !JsonValue::Parse(json, ignored)) return {};
    return json;
}

}  // namespace qel
