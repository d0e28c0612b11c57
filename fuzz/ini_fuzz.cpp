// Law: what was set in an INI file is read back, all other values stay, and of the old bytes only the value of one line
// is gone. Deleting what was added restores the old bytes.
#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "qellib10/platform/ini/ini_edit.h"
#include "qellib10/platform/ini/ini_index.h"
#include "qellib10/platform/text/multibyte.h"

#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;

// The first values of all names, found by going through the lines.
using Values = std::map<std::pair<std::string, std::string>, std::string>;

Values WalkedValues(std::string_view bytes) {
    Values values;
    std::map<std::string, bool> seen;  // sections, and whether this is the first one of its name
    std::optional<std::string> section;
    qel::IniLines lines(bytes);
    while (const auto line = lines.Next()) {
        const std::string name = qel::FoldName(line->name);
        if (line->kind == qel::IniLine::Kind::Section) {
            section.reset();
            if (seen.emplace(name, true).second) section = name;
        } else if (line->kind == qel::IniLine::Kind::Entry && section) {
            values.emplace(std::pair(*section, name), line->value);
        }
    }
    return values;
}

std::string WithoutQuotes(std::string value) {
    const bool quoted = value.size() > 1 && value[0] == value.back() && (value[0] == '"' || value[0] == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

void CheckIndex(const std::string& bytes, const Values& values) {
    const qel::IniIndex index(bytes);
    for (const auto& [names, value] : values) {
        Require(index.Value(names.first, names.second) == WithoutQuotes(value));
    }
}

// Bytes of @p old that are neither at the start nor at the end of @p changed.
std::string_view Gone(std::string_view old, std::string_view changed) {
    const auto begin = std::ranges::mismatch(old, changed).in1 - old.begin();
    old.remove_prefix(static_cast<std::size_t>(begin));
    changed.remove_prefix(static_cast<std::size_t>(begin));
    while (!old.empty() && !changed.empty() && old.back() == changed.back()) {
        old.remove_suffix(1);
        changed.remove_suffix(1);
    }
    return old;
}

std::string TakePart(std::string_view& input) {
    const std::size_t end = std::min(input.find('\0'), input.size());
    std::string part(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
    return part;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string section = TakePart(input);
    const std::string key = TakePart(input);
    const std::string value = TakePart(input);
    const std::string bytes(input);
    if (qel::IsUtf16Ini(bytes)) {  // read, never written
        qel::IniIndex(bytes).Value(section, key);
        return 0;
    }
    Values values = WalkedValues(bytes);
    CheckIndex(bytes, values);
    const std::pair names(qel::FoldName(qel::TrimIni(section)), qel::FoldName(qel::TrimIni(key)));
    if (const std::optional<std::string> changed = qel::WithIniValue(bytes, section, key, value)) {
        Require(Gone(bytes, *changed).find('\n') == std::string_view::npos);
        const bool added = values.insert_or_assign(names, qel::TrimIni(value)).second;
        Require(WalkedValues(*changed) == values);
        CheckIndex(*changed, values);
        if (added)
            Require(qel::WithoutIniKey(*changed, section, key).starts_with(bytes.substr(0, bytes.rfind('\n') + 1)));
    }
    values.erase(names);
    const Values left = WalkedValues(qel::WithoutIniKey(bytes, section, key));
    Require(std::ranges::includes(left, values));  // a second entry of the name may have replaced it
    return 0;
}
