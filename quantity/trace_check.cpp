#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "qellib10/quantity/trace_json.h"

namespace qel {
namespace {

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

// "10.0.0"; nothing for what is no version.
std::optional<std::array<int, 3>> VersionOf(std::string_view text) {
    std::array<int, 3> version{};
    const char *at = text.data(), *const end = at + text.size();
    for (std::size_t i = 0; i < version.size(); ++i) {
        if (i > 0 && (at == end || *at++ != '.')) return {};
        const auto [next, error] = std::from_chars(at, end, version[i]);
        if (error != std::errc()) return {};
        at = next;
    }
    return at == end ? std::optional(version) : std::nullopt;
}

// A later version may compute more than this one knows of, and none before the first one wrote traces.
std::string ObjectionToEngine(const std::string& engine) {
    constexpr std::array kFirst = {10, 0, 0};
    const auto version = VersionOf(engine);
    if (!version || *version < kFirst) return '"' + engine + "\" is no version that writes traces";
    if (*version <= *VersionOf(QELLIB10_QUANTITY_VERSION)) return {};
    return "the trace is of version " + engine + ", which is later than this version, " QELLIB10_QUANTITY_VERSION;
}

JsonValue* MemberOf(JsonValue& json, std::string_view name) {
    const auto found = std::ranges::find(json.members, name, [](const auto& member) { return member.first; });
    return found != json.members.end() ? &found->second : nullptr;
}

// A rule may have been named otherwise by an earlier version, with the same meaning.
JsonValue WithTodaysNames(JsonValue calculation, const Calculation& read) {
    JsonValue* const rule = MemberOf(calculation, "rounding");
    if (rule != nullptr && read.rule) rule->text = read.rule->Name();
    return calculation;
}

void Shorten(JsonValue* sentence, std::size_t length) {
    if (sentence != nullptr && sentence->kind == JsonValue::Kind::kText)
        sentence->text.resize(std::min(sentence->text.size(), length));
}

// Sentences are for people, and a later version may word them otherwise. Of an earlier version's only whether there is
// one is compared, and of a remark what is missing: "no decision", "no uncertainty of X". This version's own sentences
// are compared whole: a changed "has not passed" is a difference.
JsonValue WithoutWords(JsonValue outcome, std::string_view engine) {
    if (engine == QELLIB10_QUANTITY_VERSION) return outcome;
    if (JsonValue* const fault = MemberOf(outcome, "fault")) Shorten(MemberOf(*fault, "sentence"), 0);
    if (JsonValue* const parts = MemberOf(outcome, "parts"))
        for (JsonValue& part : parts->items) Shorten(MemberOf(part, "withoutBudget"), 0);
    if (JsonValue* const remarks = MemberOf(outcome, "remarks"))
        for (JsonValue& remark : remarks->items) Shorten(&remark, remark.text.find(": "));
    return outcome;
}

// The first traces have no kind of a fault.
void DropKindIfNew(JsonValue& computed, const JsonValue& recorded) {
    const JsonValue* const before = recorded.Find("fault");
    JsonValue* const fault = MemberOf(computed, "fault");
    if (before == nullptr || fault == nullptr || before->Find("kind") != nullptr) return;
    std::erase_if(fault->members, [](const auto& member) { return member.first == "kind"; });
}

}  // namespace

std::optional<TraceCheck> CheckTrace(std::string_view json, std::string& error, unsigned threads) {
    const std::optional<JsonValue> recorded = JsonValue::Parse(json, error);
    if (!recorded) return {};
    const JsonValue *const format = recorded->Find("format"), *const engine = recorded->Find("engine"),
                           *const calculation = recorded->Find("calculation"),
                           *const outcome = recorded->Find("outcome");
    if (format == nullptr || *format != JsonValue::Text(kTraceFormat)) {
        error = "this is no trace of a calculation";
        return {};
    }
    if (engine == nullptr || engine->kind != JsonValue::Kind::kText || calculation == nullptr || outcome == nullptr) {
        error = "the trace is not complete";
        return {};
    }
    error = ObjectionToEngine(engine->text);
    if (!error.empty()) return {};
    const std::optional<Calculation> read = CalculationOf(*calculation, error);
    if (!read) return {};
    for (const auto& [name, value] : recorded->members) {
        if (&value == format || &value == engine || &value == calculation || &value == outcome) continue;
        error = "\"" + name + "\" is no member of a trace";
        return {};
    }
    TraceCheck check{Trace::Of(*read, threads), engine->text, {}};
    // What this version does not know of the calculation would not have been computed.
    Compare(WithTodaysNames(*calculation, *read), JsonOf(*read), "calculation", check.differences);
    JsonValue computed = WithoutWords(OutcomeOf(check.computed), engine->text);
    DropKindIfNew(computed, *outcome);
    Compare(WithoutWords(*outcome, engine->text), computed, "", check.differences);
    return check;
}

}  // namespace qel
