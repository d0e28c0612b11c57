#include "calc_input.h"

#include <optional>

#include "tool.h"

namespace tool {
namespace {

using qel::UncertaintyComponent;

[[noreturn]] void Refuse(const std::string& text, const std::string& why) {
    throw CLI::ValidationError('"' + text + "\" " + why);
}

std::string Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
}

// Before and after the first one; nothing after where there is none.
std::pair<std::string, std::optional<std::string>> Split(std::string_view text, char at) {
    const std::size_t place = text.find(at);
    if (place == std::string_view::npos) return {Trimmed(text), {}};
    return {Trimmed(text.substr(0, place)), Trimmed(text.substr(place + 1))};
}

double Number(const std::string& text) {
    const std::optional<double> number = ParseNumber(text);
    if (!number) Refuse(text, "is no number");
    return *number;
}

std::pair<double, double> Pair(const std::string& text) {
    const std::optional<std::pair<double, double>> pair = ParsePair(text, '/');
    if (!pair) Refuse(text, "is not two numbers with / between them");
    return *pair;
}

std::optional<UncertaintyComponent> ComponentOf(const std::string& what, const std::string& value,
                                                const std::string& source) {
    if (what == "rect") return UncertaintyComponent::Rectangular(Number(value), source);
    if (what == "tri") return UncertaintyComponent::Triangular(Number(value), source);
    if (what == "u" && value.find('/') == std::string::npos)
        return UncertaintyComponent::Standard(Number(value), source);
    const auto [first, second] = Pair(value);
    if (what == "u") return UncertaintyComponent::Standard(first, source, second);
    if (what == "cert") return UncertaintyComponent::Certificate(first, second, source);
    const auto count = static_cast<std::size_t>(second >= 0.0 && second <= 1e9 ? second : 0.0);
    if (static_cast<double>(count) != second) Refuse(value, "has no whole number of readings");
    return UncertaintyComponent::Readings(first, count, source);
}

}  // namespace

qel::CalculationInput InputOf(const std::string& assignment) {
    const auto [name, rest] = Split(assignment, '=');
    if (name.empty() || !rest) Refuse(assignment, "is not NAME=VALUE");
    auto [value, more] = Split(*rest, ';');
    std::optional<qel::CalculationInput> input = qel::CalculationInput::Of(name, value);
    if (!input) {
        const std::string why = qel::CalculationInput::WhyNot(value);
        Refuse(value, "is no value: " + (why.empty() ? "a number, < or > with a number, missing or invalid" : why));
    }
    std::string source;
    bool isSourceUsed = true;
    while (more) {
        const auto [item, after] = Split(*more, ';');
        const auto [what, text] = Split(item, '=');
        more = after;
        if (!text) Refuse(item, "is not WHAT=...");
        if (what == "from")
            input->origin = *text;
        else if (what == "source") {
            source = *text;
            isSourceUsed = false;
        } else if (what == "u" || what == "rect" || what == "tri" || what == "cert" || what == "s") {
            const bool isOpposed = text->starts_with('-');
            const auto component = ComponentOf(what, isOpposed ? text->substr(1) : *text, source);
            if (!component) Refuse(item, "is no uncertainty: " + Why("a number is out of its range"));
            input->components.push_back(isOpposed ? component->Opposed() : *component);
            isSourceUsed = true;
        } else {
            Refuse(item, "is not known: there are u, rect, tri, cert, s, source and from");
        }
    }
    if (!isSourceUsed) Refuse("source=" + source, "has no uncertainty after it");
    return *std::move(input);
}

qel::InputCorrelation CorrelationOf(const std::string& text, const std::vector<qel::CalculationInput>& inputs) {
    const auto [first, more] = Split(text, ',');
    const auto [second, coefficient] = Split(more.value_or(""), ',');
    if (!coefficient) Refuse(text, "is not A,B,R");
    qel::FormulaScope names;  // in which upper and lower case are the same
    for (const qel::CalculationInput& input : inputs) names.Add(input.name);
    const auto positionOf = [&](const std::string& name) {
        const std::optional<std::size_t> found = names.Find(name);
        if (!found) Refuse(name, "is no input");
        if (inputs[*found].components.empty()) Refuse(name, "has no uncertainty, so it has no correlation coefficient");
        return *found;
    };
    return {positionOf(first), positionOf(second), Number(*coefficient)};
}

qel::CalculationFormula FormulaOf(const std::string& assignment) {
    const auto [name, rest] = Split(assignment, '=');
    if (name.empty() || !rest) Refuse(assignment, "is not NAME=FORMULA");
    const auto [formula, unit] = Split(*rest, ';');
    if (unit && !unit->starts_with("unit=")) Refuse(assignment, "has more than \"; unit=...\" after the formula");
    return {name, formula, unit ? Trimmed(unit->substr(5)) : ""};
}

}  // namespace tool
