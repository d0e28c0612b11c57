#include <algorithm>
#include <cmath>

#include "qellib10/platform/json/json_value.h"
#include "qellib10/quantity/calculation_json.h"
#include "qellib10/quantity/trace.h"

namespace qel {
namespace {

constexpr const char* kFormat = "qellib10-trace-1";

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

// All that is computed.
JsonValue Outcome(const Trace& trace) {
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

std::string Shown(const JsonValue& value) {
    std::string text = value.Dump();
    text.pop_back();
    constexpr std::size_t kMostShown = 100;
    if (text.size() <= kMostShown) return text;
    std::size_t end = kMostShown;
    while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;  // between two characters
    return text.substr(0, end) + "...";
}

constexpr std::size_t kMostDifferences = 100;

void Compare(const JsonValue& recorded, const JsonValue& computed, const std::string& path,
             std::vector<std::string>& differences) {
    if (recorded == computed || differences.size() == kMostDifferences) return;
    const bool areLists = recorded.kind == JsonValue::Kind::kList && computed.kind == JsonValue::Kind::kList;
    if (areLists && recorded.items.size() == computed.items.size()) {
        for (std::size_t i = 0; i < recorded.items.size(); ++i)
            Compare(recorded.items[i], computed.items[i], path + '/' + std::to_string(i + 1), differences);
        return;
    }
    if (recorded.kind == JsonValue::Kind::kObject && computed.kind == JsonValue::Kind::kObject) {
        // By name: a file may have the members in any order.
        const std::string before = path.empty() ? "" : path + '/';
        for (const auto& [name, value] : recorded.members) {
            if (const JsonValue* const other = computed.Find(name))
                Compare(value, *other, before + name, differences);
            else
                differences.push_back(before + name + " was recorded, and is not computed");
        }
        for (const auto& [name, value] : computed.members)
            if (recorded.Find(name) == nullptr)
                differences.push_back(before + name + " is computed, and was not recorded");
        return;
    }
    differences.push_back(path + ": " + Shown(recorded) + " was recorded, " + Shown(computed) + " is computed");
}

}  // namespace

std::string Trace::Json() const {
    return JsonValue::Object()
        .Set("format", JsonValue::Text(kFormat))
        .Set("engine", JsonValue::Text(m_engine))
        .Set("calculation", JsonOf(m_calculation))
        .Set("outcome", Outcome(*this))
        .Dump();
}

std::optional<TraceCheck> CheckTrace(std::string_view json, std::string& error, unsigned threads) {
    const std::optional<JsonValue> recorded = JsonValue::Parse(json, error);
    if (!recorded) return {};
    const JsonValue *const format = recorded->Find("format"), *const engine = recorded->Find("engine"),
                           *const calculation = recorded->Find("calculation"),
                           *const outcome = recorded->Find("outcome");
    if (format == nullptr || *format != JsonValue::Text(kFormat)) {
        error = "this is no trace of a calculation";
        return {};
    }
    if (engine == nullptr || engine->kind != JsonValue::Kind::kText || calculation == nullptr || outcome == nullptr) {
        error = "the trace is not complete";
        return {};
    }
    const std::optional<Calculation> read = CalculationOf(*calculation, error);
    if (!read) return {};
    for (const auto& [name, value] : recorded->members) {
        if (&value == format || &value == engine || &value == calculation || &value == outcome) continue;
        error = "\"" + name + "\" is no member of a trace";
        return {};
    }
    TraceCheck check{Trace::Of(*read, threads), engine->text, {}};
    // What this version does not know of the calculation would not have been computed.
    Compare(*calculation, JsonOf(*read), "calculation", check.differences);
    Compare(*outcome, Outcome(check.computed), "", check.differences);
    return check;
}

}  // namespace qel
