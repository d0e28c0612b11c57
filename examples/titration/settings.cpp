#include "settings.h"

#include <algorithm>
#include <set>

#include "failure.h"
#include "number.h"
#include "text_file.h"

namespace titration {
namespace {

constexpr int kMostDigits = 12;
constexpr std::size_t kLongestName = 32;  // enough for a name in a report, and bounded for the formula

// Blanks do not separate in a formula, and a name that begins like a number would be read as one.
void RequireName(const std::string& name) {
    const bool fits =
        !name.empty() && name.size() <= kLongestName && std::string("0123456789.").find(name[0]) == std::string::npos;
    if (!fits || name.find_first_of(" \t()*+-/=") != std::string::npos) {
        throw Failure("\"" + name + "\" cannot be a name in a formula");
    }
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

class Reader {
public:
    void Take(std::string_view line) {
        line = Trimmed(line);
        if (line.empty() || line.starts_with(';') || line.starts_with('#')) return;
        if (line.starts_with('[') && line.ends_with(']')) {
            m_section = line.substr(1, line.size() - 2);
            if (m_section != "curve" && m_section != "variables" && m_section != "result") {
                throw Failure("no section [" + m_section + "]");
            }
            return;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) throw Failure("neither a section nor name = value");
        const std::string key(Trimmed(line.substr(0, equals)));
        const std::string value(Trimmed(line.substr(equals + 1)));
        if (!m_seen.insert(m_section + "/" + key).second) throw Failure("\"" + key + "\" stands there twice");
        if (value.empty()) throw Failure("\"" + key + "\" has no value");
        Set(key, value);
    }

    Settings Finished() const {
        for (const char* key : {"end_point", "name", "formula", "unit", "digits"}) {
            if (!m_seen.contains(std::string("result/") + key)) throw Failure(std::string("[result] has no ") + key);
        }
        return m_settings;
    }

private:
    void Set(const std::string& key, const std::string& value) {
        Settings& s = m_settings;
        if (m_section == "variables") {
            RequireName(key);
            s.variables.push_back({key, Number(value)});
        } else if (m_section == "curve" && key == "volume") {
            s.volumeColumn = value;
        } else if (m_section == "curve" && key == "signal") {
            s.signalColumn = value;
        } else if (m_section == "result" && key == "end_point") {
            RequireName(s.endPoint = value);
        } else if (m_section == "result" && key == "name") {
            RequireName(s.name = value);
        } else if (m_section == "result" && key == "formula") {
            s.formula = value;
        } else if (m_section == "result" && key == "unit") {
            s.unit = value;
        } else if (m_section == "result" && key == "digits") {
            s.digits = WholeNumber(value, kMostDigits);
        } else if (m_section == "result" && key == "variable_digits") {
            s.variableDigits = WholeNumber(value, kMostDigits);
        } else {
            throw Failure("\"" + key + "\" has no meaning " +
                          (m_section.empty() ? "before the first section" : "in [" + m_section + "]"));
        }
    }

    Settings m_settings;
    std::string m_section;
    std::set<std::string> m_seen;  // section/key
};

}  // namespace

Settings ReadSettings(std::string_view text) {
    Reader reader;
    std::size_t number = 0;
    for (const std::string_view line : Lines(text)) {
        ++number;
        try {
            reader.Take(line);
        } catch (const Failure& failure) {
            throw Failure("line " + std::to_string(number) + ": " + failure.what());
        }
    }
    return reader.Finished();
}

}  // namespace titration
