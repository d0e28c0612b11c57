#include <charconv>
#include <cstdint>
#include <utility>

#include "qellib10/quantity/calculation_json.h"
#include "qellib10/quantity/calculation_words.h"
#include "qellib10/quantity/uncertainty_statement.h"

namespace qel {
namespace {

// Thrown by the reader alone, and caught by CalculationOf.
struct Refused {
    std::string why;
};

[[noreturn]] void Refuse(std::string_view member, std::string_view expected) {
    throw Refused{"\"" + std::string(member) + "\" is not " + std::string(expected)};
}

// The members of an object, by their types.
class Members {
public:
    explicit Members(const JsonValue& json, std::string_view what) : m_json(json) {
        if (json.kind != JsonValue::Kind::kObject) Refuse(what, "an object");
    }

    std::string Text(std::string_view name) const {
        const JsonValue* const value = m_json.Find(name);
        if (value == nullptr) return {};
        if (value->kind != JsonValue::Kind::kText) Refuse(name, "a text");
        return value->text;
    }
    bool Boolean(std::string_view name) const {
        const JsonValue* const value = m_json.Find(name);
        if (value != nullptr && value->kind != JsonValue::Kind::kBoolean) Refuse(name, "true or false");
        return value != nullptr && value->isTrue;
    }
    double Number(std::string_view name, double missing) const {
        const JsonValue* const value = m_json.Find(name);
        if (value == nullptr) return missing;
        const std::optional<double> number = value->Double();
        if (!number) Refuse(name, "a number");
        return *number;
    }
    template <class Integer> Integer Whole(std::string_view name) const {
        const JsonValue* const value = m_json.Find(name);
        const std::optional<std::int64_t> number = value != nullptr ? value->Integer() : std::nullopt;
        if (!number || !std::in_range<Integer>(*number)) Refuse(name, "a whole number");
        return static_cast<Integer>(*number);
    }
    bool Has(std::string_view name) const { return m_json.Find(name) != nullptr; }
    const JsonValue& At(std::string_view name) const {
        const JsonValue* const value = m_json.Find(name);
        if (value == nullptr) Refuse(name, "there");
        return *value;
    }
    const std::vector<JsonValue>& List(std::string_view name) const {
        static const std::vector<JsonValue> none;
        const JsonValue* const value = m_json.Find(name);
        if (value == nullptr) return none;
        if (value->kind != JsonValue::Kind::kList) Refuse(name, "a list");
        return value->items;
    }
    template <class Names> auto Named(std::string_view name, const Names& names) const {
        const std::string text = Text(name);
        const auto value = ValueIn(names, text);
        if (!value) Refuse(name, "one of the words that it may be");
        return *value;
    }

private:
    const JsonValue& m_json;
};

CalculationFormula FormulaOf(const JsonValue& json) {
    const Members members(json, "formula");
    return {members.Text("name"), members.Text("formula"), members.Text("unit")};
}

// Made from how it is stated, so that a statement that does not belong to its uncertainty is noticed.
UncertaintyComponent ComponentOf(const JsonValue& json) {
    const Members members(json, "uncertainties");
    UncertaintyComponent stated;
    stated.source = members.Text("source");
    stated.uncertainty = members.Number("uncertainty", 0.0);
    stated.evaluation = members.Named("evaluation", kEvaluationWords);
    stated.distribution = members.Named("distribution", kDistributionWords);
    stated.stated = members.Number("stated", 0.0);
    stated.factor = members.Number("factor", 1.0);
    const JsonValue& freedom = members.At("degreesOfFreedom");
    const bool isInfinite = freedom.kind == JsonValue::Kind::kText && freedom.text == kInfiniteWord;
    if (!isInfinite) stated.degreesOfFreedom = members.Number("degreesOfFreedom", UncertaintyComponent::kInfinite);
    const std::optional<UncertaintyComponent> component = OfItsStatement(stated);
    if (!component) Refuse("uncertainties", "a valid uncertainty");
    return *component;
}

CalculationInput InputOf(const JsonValue& json) {
    const Members members(json, "inputs");
    CalculationInput input;
    input.name = members.Text("name");
    const std::optional<Reading> reading = Reading::OfText(members.Text("reading"));
    if (!reading) Refuse("reading", "a reading");
    input.reading = *reading;
    input.reading.isInexact = members.Boolean("isInexact");
    input.reading.isComputed = members.Boolean("isComputed");
    input.reading.isFromBinary = members.Boolean("isFromBinary");
    if (members.Has("beforeRounding")) {
        const std::optional<Reading> before = Reading::OfText(members.Text("beforeRounding"));
        if (!before || !before->IsValue()) Refuse("beforeRounding", "a number");
        input.reading.beforeRounding = before->value;
    }
    if (members.Has("roundedByListTo")) input.reading.places = members.Whole<int>("roundedByListTo");
    input.unit = members.Text("unit");
    input.origin = members.Text("origin");
    for (const JsonValue& component : members.List("uncertainties")) input.components.push_back(ComponentOf(component));
    return input;
}

UncertaintyOptions OptionsOf(const JsonValue& json) {
    const Members members(json, "coverage");
    UncertaintyOptions options;
    options.coverageProbability = members.Number("probability", options.coverageProbability);
    if (members.Has("factor")) options.coverageFactor = members.Number("factor", 0.0);
    for (const JsonValue& item : members.List("correlations")) {
        const Members pair(item, "correlations");
        options.correlations.push_back(
            {pair.Whole<std::size_t>("first"), pair.Whole<std::size_t>("second"), pair.Number("coefficient", 0.0)});
    }
    return options;
}

std::optional<Decimal> LimitOf(const Members& members, std::string_view name) {
    if (!members.Has(name)) return {};
    DecimalFlags flags;
    const Decimal limit = Decimal::OfText(members.Text(name), flags);
    if (!limit.IsFinite() || flags.isInexact) Refuse(name, "a number");
    return limit;
}

ResultLimits LimitsOf(const JsonValue& json) {
    const Members members(json, "limits");
    ResultLimits limits;
    limits.lower = LimitOf(members, "lower");
    limits.upper = LimitOf(members, "upper");
    const std::optional<DecisionRule> rule = DecisionRule::OfName(members.Text("rule"));
    if (!rule) Refuse("rule", "the name of a decision rule");
    limits.rule = *rule;
    limits.comparesRounded = members.Text("compares") != kUnroundedWord;
    return limits;
}

std::uint64_t SeedOf(const std::string& text) {
    std::uint64_t seed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seed);
    if (error != std::errc() || end != text.data() + text.size()) Refuse("seed", "a whole number, as a text");
    return seed;
}

Calculation Read(const JsonValue& json) {
    const Members members(json, "calculation");
    Calculation calculation;
    calculation.result = FormulaOf(members.At("result"));
    calculation.isKept = members.Boolean("isKept");
    for (const JsonValue& helper : members.List("helpers")) calculation.helpers.push_back(FormulaOf(helper));
    for (const JsonValue& input : members.List("inputs")) calculation.inputs.push_back(InputOf(input));
    if (members.Has("substitution")) {
        const auto substitution = LimitSubstitutionOf(members.Text("substitution"));
        if (!substitution) Refuse("substitution", "one of the words that it may be");
        calculation.substitution = *substitution;
    }
    if (members.Has("rounding")) {
        calculation.rule = RoundingRule::OfName(members.Text("rounding"));
        if (!calculation.rule) Refuse("rounding", "the name of a rule");
    }
    if (members.Has("limits")) calculation.limits = LimitsOf(members.At("limits"));
    if (members.Has("trials")) {
        calculation.trials = members.Whole<std::uint32_t>("trials");
        calculation.seed = SeedOf(members.Text("seed"));
    }
    if (members.Has("coverage")) calculation.uncertainty = OptionsOf(members.At("coverage"));
    return calculation;
}

}  // namespace

std::optional<Calculation> CalculationOf(const JsonValue& json, std::string& error) {
    try {
        return Read(json);
    } catch (const Refused& refused) {
        error = refused.why;
        return {};
    }
}

}  // namespace qel
