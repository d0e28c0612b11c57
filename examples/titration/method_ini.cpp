#include "method_ini.h"

#include <algorithm>

#include "failure.h"
#include "printable.h"

namespace titration {
namespace {

std::string Bracketed(const char* section) { return "[" + std::string(section) + "]"; }

// The keys of a section in the order of the file. A repeated one would be passed over in silence.
std::vector<CString> KeysOf(const CPrivateProfile& ini, const char* section) {
    CStringArray lines;
    if (ini.GetAllStrings(section, lines) == 0) throw Failure(Bracketed(section) + " is too long");
    std::vector<CString> keys;
    for (int i = 0; i < lines.GetSize(); ++i) {
        CString line = lines.GetAt(i);
        if (line.Find('=') < 0) throw Failure("\"" + std::string(line) + "\" is not name = value");
        const CString key = CQVariant::Split(line, '=');
        if (std::ranges::any_of(keys, [&](const CString& other) { return other.CompareNoCase(key) == 0; }))
            throw Failure("\"" + std::string(key) + "\" stands twice in " + Bracketed(section));
        keys.push_back(key);
    }
    return keys;
}

// A misspelt key would be passed over in silence, too.
void RequireKnownKeys(const CPrivateProfile& ini, const char* section) {
    for (const CString& key : KeysOf(ini, section)) {
        const bool isKnown = std::ranges::any_of(kKeys, [&](const auto& known) {
            return known.first == std::string_view(section) && key.CompareNoCase(known.second) == 0;
        });
        if (!isKnown) throw Failure("\"" + std::string(key) + "\" has no meaning in " + Bracketed(section));
    }
}

// A name or value in another encoding loses bytes in the XML document that keeps the method, so that the result could
// not be computed again from there.
const std::string& RequireUtf8(const std::string& text, const std::string& section, const std::string& key) {
    if (IsUtf8(text) && IsUtf8(key)) return text;
    throw Failure(
        "[" + section + "] " + key + " = " + text +
        ": is not in UTF-8; save the settings as UTF-8, for example with iconv -f LATIN1 -t UTF-8 (-f CP932 for "
        "Japanese)");
}

}  // namespace

Method ReadMethodIni(const std::string& path) {
    if (CQFile::IsExist(path.c_str()) == 0) throw Failure("there is no such file");
    const CPrivateProfile ini(qel::FullPath(path));  // a name without a folder would mean the Windows folder
    for (const char* section : {"curve", "result", "limits"}) RequireKnownKeys(ini, section);

    Method method;
    for (const auto& [section, key] : kKeys) {
        const CString text = ini.Get(section, key, "");
        if (!text.IsEmpty()) method.push_back({section, key, RequireUtf8(std::string(text), section, key)});
    }
    for (const CString& key : KeysOf(ini, kVariables)) {
        const std::string name(key), text(ini.Get(kVariables, key, ""));
        method.push_back({kVariables, name, RequireUtf8(text, kVariables, name)});
    }
    return method;
}

}  // namespace titration
