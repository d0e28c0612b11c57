#include "settings.h"

#include <string_view>

#include "failure.h"
#include "number.h"

namespace titration {
namespace {

constexpr int kMostDigits = 12;
constexpr std::size_t kLongestName = 32;  // enough for a name in a report, and bounded for the formula

// Blanks do not separate in a formula, and a name that begins like a number would be read as one.
std::string Name(const std::string& name) {
    const bool fits = !name.empty() && name.size() <= kLongestName &&
                      std::string_view("0123456789.").find(name[0]) == std::string_view::npos;
    if (!fits || name.find_first_of(" \t()*+-/=") != std::string::npos) {
        throw Failure("\"" + name + "\" cannot be a name in a formula");
    }
    return name;
}

int WholeNumber(const std::string& value, int largest) {
    const auto number = ParseWholeNumber(value);
    if (!number || *number > largest)
        throw Failure("\"" + value + "\" is no whole number from 0 to " + std::to_string(largest));
    return *number;
}

double Number(const std::string& value) {
    const auto number = qel::ReadNumber(value);
    if (!number) throw Failure("\"" + value + "\" is no number");
    return *number;
}

std::string Required(const Method& method, const char* section, const char* key) {
    const std::string text = TextOf(method, section, key);
    if (text.empty()) throw Failure("[" + std::string(section) + "] has no " + key);
    return text;
}

std::optional<double> Limit(const Method& method, const char* key) {
    const std::string text = TextOf(method, "limits", key);
    return text.empty() ? std::nullopt : std::optional(Number(text));
}

}  // namespace

Settings ParseSettings(const Method& method) {
    Settings settings;
    settings.volumeColumn = TextOf(method, "curve", "volume", "1");
    settings.signalColumn = TextOf(method, "curve", "signal", "2");
    for (const MethodItem& item : method) {
        if (item.section == kVariables) settings.variables.push_back({Name(item.key), Number(item.text)});
    }
    settings.endPoint = Name(Required(method, "result", "end_point"));
    settings.name = Name(Required(method, "result", "name"));
    settings.formula = Required(method, "result", "formula");
    settings.unit = Required(method, "result", "unit");
    settings.digits = WholeNumber(Required(method, "result", "digits"), kMostDigits);
    const std::string variableDigits = TextOf(method, "result", "variable_digits");
    if (!variableDigits.empty()) settings.variableDigits = WholeNumber(variableDigits, kMostDigits);
    settings.low = Limit(method, "low");
    settings.high = Limit(method, "high");
    if (settings.low && settings.high && *settings.low > *settings.high)
        throw Failure("the low limit is above the high one");
    return settings;
}

}  // namespace titration
