#include "demo/method/settings.h"

#include <algorithm>
#include <string_view>

#include <qellib10/qellib10.h>

#include "demo/support/failure.h"
#include "demo/support/number.h"

namespace titration {
namespace {

constexpr int kMaxDigits = 12;
constexpr std::size_t kLongestName = 32;  // enough for a name in a report, and limited for the formula

// Blanks do not separate in a formula, and a name that starts like a number would be read as one.
std::string Name(const std::string& name) {
    const bool fits = !name.empty() && name.size() <= kLongestName &&
                      std::string_view("0123456789.").find(name[0]) == std::string_view::npos;
    if (!fits || name.find_first_of(" \t()*+-/=") != std::string::npos) {
        throw Failure("\"" + name + "\" cannot be a name in a formula; expected 1 to " + std::to_string(kLongestName) +
                      " bytes without blanks and ()*+-/=, the first no digit");
    }
    return name;
}

int WholeNumber(const std::string& value, int largest) {
    const auto number = ParseWholeNumber(value);
    if (!number || *number > largest)
        throw Failure("\"" + value + "\" is not a whole number; expected one from 0 to " + std::to_string(largest));
    return *number;
}

double Number(const std::string& value) {
    const auto number = qel::ReadNumber(value);
    if (!number) throw Failure("\"" + value + "\" is not a number; expected one like 1.25, without a unit");
    return *number;
}

std::string Unit(const std::string& unit) {
    const int id = ParseWholeNumber(unit).value_or(CQELResource::GetUnitID(unit.c_str()));
    const CString text = CQELResource::GetUnitText(static_cast<UINT>(id));
    if (text.IsEmpty())
        throw Failure("there is no unit \"" + unit + "\"; expected one of the library's, such as g/L, mol/L, mL or %");
    return std::string(text);
}

// Reads the items of a method. Errors are reported with the item's place.
class Items {
public:
    explicit Items(const Method& method) : m_method(method) {}

    template <class Read> auto Required(const char* section, const char* key, Read read) const {
        const std::string text = TextOf(m_method, section, key), place = PlaceOf(m_method, section, key);
        if (text.empty()) throw Failure(place + " is missing; add a line \"" + key + " = ...\" to [" + section + "]");
        return About(place, [&] { return read(text); });
    }

    template <class Read> auto Optional(const char* section, const char* key, Read read) const {
        using Value = decltype(read(std::string()));
        return TextOf(m_method, section, key).empty() ? std::nullopt
                                                      : std::optional<Value>(Required(section, key, read));
    }

private:
    const Method& m_method;
};

// Formulas ignore the case of letters.
void RequireOtherNames(const std::vector<NamedValue>& variables, const std::string& name) {
    for (const NamedValue& variable : variables) {
        if (CString(variable.name.c_str()).CompareNoCase(name.c_str()) == 0)
            throw Failure("there are two variables \"" + name + "\"; rename one of them");
    }
}

// The name of a variable or of the end point, as it is written there.
std::string KnownName(const Settings& settings, const std::string& name) {
    const auto isSame = [&](const std::string& other) {
        return CString(other.c_str()).CompareNoCase(name.c_str()) == 0;
    };
    if (isSame(settings.endPoint)) return settings.endPoint;
    const auto found = std::ranges::find_if(settings.variables, isSame, &NamedValue::name);
    if (found == settings.variables.end())
        throw Failure("there is no value with this name; expected one of [variables], or that of the end point, " +
                      settings.endPoint);
    return found->name;
}

// Those of a section whose keys are names of values.
template <class Read> void ReadNamed(const Method& method, const char* section, Settings& settings, Read read) {
    for (const MethodItem& item : method) {
        if (item.section != section) continue;
        About(PlaceOf(method, item.section, item.key), [&] { read(KnownName(settings, item.key), item.text); });
    }
}

std::string UnitOfValue(const std::string& text) {
    std::string why;
    if (!qel::Unit::Parse(text, why)) throw Failure(why + "; expected one like mL, mol/L or g/mol");
    return text;
}

qel::DecisionRule Rule(const std::string& text) {
    const auto rule = qel::DecisionRule::OfName(text);
    if (!rule)
        throw Failure("\"" + text + "\" is not a rule of decision; expected one like \"" +
                      qel::DecisionRule::GuardedAcceptance().Name() + "\" or \"" +
                      qel::DecisionRule::SimpleAcceptance().Name() + "\"");
    return *rule;
}

}  // namespace

Settings ParseSettings(const Method& method) {
    const Items items(method);
    const auto asItIs = [](const std::string& text) { return text; };
    const auto digits = [](const std::string& text) { return WholeNumber(text, kMaxDigits); };
    Settings settings;
    settings.volumeColumn = TextOf(method, "curve", "volume", "1");
    settings.signalColumn = TextOf(method, "curve", "signal", "2");
    const auto otherName = [&](const std::string& text) {
        RequireOtherNames(settings.variables, text);
        return Name(text);
    };
    for (const MethodItem& item : method) {
        if (item.section != kVariables) continue;
        About(PlaceOf(method, item.section, item.key), [&] {
            settings.variables.push_back({otherName(item.key), Number(item.text)});
        });
    }
    settings.endPoint = items.Required("result", "end_point", otherName);
    settings.name = items.Required("result", "name", [&](const std::string& text) {
        RequireOtherNames({{settings.endPoint, 0}}, text);
        return otherName(text);
    });
    settings.formula = items.Required("result", "formula", asItIs);
    settings.formulaPlace = PlaceOf(method, "result", "formula");
    settings.unit = items.Required("result", "unit", Unit);
    settings.digits = items.Required("result", "digits", digits);
    settings.variableDigits = items.Optional("result", "variable_digits", digits).value_or(-1);
    ReadNamed(method, kUnits, settings, [&](const std::string& name, const std::string& text) {
        settings.units.push_back({name, UnitOfValue(text)});
    });
    ReadNamed(method, kUncertainties, settings, [&](const std::string& name, const std::string& text) {
        settings.uncertainties.push_back({name, ReadUncertainties(text)});
        if (settings.uncertainties.back().stated.hasThatOfCurve && name != settings.endPoint)
            throw Failure("only the end point, " + settings.endPoint + ", has an uncertainty by the curve");
    });
    settings.low = items.Optional("limits", "low", Number);
    settings.high = items.Optional("limits", "high", Number);
    if (const auto rule = items.Optional("limits", "rule", Rule)) settings.rule = *rule;
    if (settings.low && settings.high && *settings.low > *settings.high) {
        throw Failure(PlaceOf(method, "limits", "low") + " = " + TextOf(method, "limits", "low") +
                      ": is above the high limit, " + TextOf(method, "limits", "high") + "; exchange the two");
    }
    return settings;
}

}  // namespace titration
