#include "settings.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include <qellib10/qellib10.h>

#include "failure.h"
#include "number.h"

namespace titration {
namespace {

constexpr int kMostDigits = 12;
constexpr std::size_t kLongestName = 32;  // enough for a name in a report, and bounded for the formula

// Blanks do not separate in a formula, and a name that begins like a number would be read as one.
std::string Name(const std::string& name) {
    const bool fits =
        !name.empty() && name.size() <= kLongestName && std::string_view("0123456789.").find(name[0]) == name.npos;
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
    const auto number = ParseNumber(value);
    if (!number) throw Failure("\"" + value + "\" is no number");
    return *number;
}

// One section of the settings, its texts as std::string.
class Section {
public:
    Section(const CPrivateProfile& ini, const char* name) : m_ini(ini), m_name(name) {}

    std::string Text(const std::string& key, const char* otherwise) const {
        return std::string(m_ini.Get(m_name, key.c_str(), otherwise));
    }
    std::string Text(const std::string& key) const {
        const std::string text = Text(key, "");
        if (text.empty()) throw Failure(Here() + " has no " + key);
        return text;
    }

    // The keys in the order of the file. A misspelt or repeated one would be passed over in silence.
    std::vector<std::string> Keys() const {
        CStringArray lines;
        if (m_ini.GetAllStrings(m_name, lines) == 0) throw Failure(Here() + " is too long");
        std::vector<CString> keys;
        for (int i = 0; i < lines.GetSize(); ++i) {
            CString line = lines.GetAt(i);
            if (line.Find('=') < 0) throw Failure("\"" + std::string(line) + "\" is not name = value");
            const CString key = CQVariant::Split(line, '=');
            if (std::ranges::any_of(keys, [&](const CString& other) { return other.CompareNoCase(key) == 0; }))
                throw Failure("\"" + std::string(key) + "\" stands twice in " + Here());
            keys.push_back(key);
        }
        return {keys.begin(), keys.end()};
    }
    void RequireNoneBut(std::initializer_list<const char*> known) const {
        for (const std::string& key : Keys()) {
            const auto isKey = [&](const char* name) { return CString(name).CompareNoCase(key.c_str()) == 0; };
            if (std::ranges::none_of(known, isKey)) throw Failure("\"" + key + "\" has no meaning in " + Here());
        }
    }

private:
    std::string Here() const { return "[" + std::string(m_name) + "]"; }

    const CPrivateProfile& m_ini;
    const char* m_name;
};

}  // namespace

Settings ReadSettings(const std::string& path) {
    if (CQFile::IsExist(path.c_str()) == 0) throw Failure("there is no such file");
    const CPrivateProfile ini(qel::FullPath(path));  // a name without a folder would mean the Windows folder
    const Section curve(ini, "curve"), variables(ini, "variables"), result(ini, "result");
    curve.RequireNoneBut({"volume", "signal"});
    result.RequireNoneBut({"end_point", "name", "formula", "unit", "digits", "variable_digits"});

    Settings settings;
    settings.volumeColumn = curve.Text("volume", "1");
    settings.signalColumn = curve.Text("signal", "2");
    for (const std::string& name : variables.Keys()) {
        settings.variables.push_back({Name(name), Number(variables.Text(name, ""))});
    }
    settings.endPoint = Name(result.Text("end_point"));
    settings.name = Name(result.Text("name"));
    settings.formula = result.Text("formula");
    settings.unit = result.Text("unit");
    settings.digits = WholeNumber(result.Text("digits"), kMostDigits);
    const std::string variableDigits = result.Text("variable_digits", "");
    if (!variableDigits.empty()) settings.variableDigits = WholeNumber(variableDigits, kMostDigits);
    return settings;
}

}  // namespace titration
