#include "demo/method/method_ini.h"

#include <algorithm>
#include <utility>

#include <qellib10/qellib10.h>

#include "demo/method/ini_places.h"
#include "demo/support/failure.h"
#include "demo/support/text_file.h"

namespace titration {
namespace {

bool SameName(const std::string& a, const std::string& b) { return CString(a.c_str()).CompareNoCase(b.c_str()) == 0; }

bool IsIn(const IniPlace& place, const char* section) { return SameName(place.section, section); }

// The names allowed in a section, or those of the sections for the empty text.
std::string NamesIn(const std::string& section) {
    std::string names;
    std::string before;
    for (const auto& [itsSection, key] : kKeys) {
        const std::string name = section.empty() ? "[" + std::string(itsSection) + "]" : key;
        if ((section.empty() || SameName(section, itsSection)) && name != before)
            names += (names.empty() ? "" : ", ") + name;
        before = name;
    }
    if (!section.empty()) return names;
    for (const std::string named : kNamedSections) names += ", [" + named + "]";
    return names;
}

bool IsInNamedSection(const IniPlace& place) {
    return std::ranges::any_of(kNamedSections, [&](const char* section) { return IsIn(place, section); });
}

void RequireKnownSection(const IniPlace& place) {
    const bool isKnown = IsInNamedSection(place) ||
                         std::ranges::any_of(kKeys, [&](const auto& known) { return IsIn(place, known.first); });
    if (!isKnown) throw Failure(place.Text() + ": is in no known section; expected one of " + NamesIn(""));
}

void RequireKnownKey(const IniPlace& place) {
    if (!place.hasValue)
        throw Failure(place.Text() + ": expected name = value; put a semicolon before it if it is a comment");
    const bool isKnown = IsInNamedSection(place) || std::ranges::any_of(kKeys, [&](const auto& known) {
                             return IsIn(place, known.first) && SameName(place.key, known.second);
                         });
    if (!isKnown) throw Failure(place.Text() + ": has no meaning there; expected one of " + NamesIn(place.section));
}

// Misspelt or repeated names would be ignored without notice, and a result signed without its limits.
void RequireKnownOnce(const std::vector<IniPlace>& places) {
    for (const IniPlace& place : places) {
        RequireKnownSection(place);
        if (!place.key.empty() || place.hasValue) RequireKnownKey(place);
        const auto first = std::ranges::find_if(places, [&](const IniPlace& other) {
            return IsIn(other, place.section.c_str()) && SameName(other.key, place.key) &&
                   other.hasValue == place.hasValue;
        });
        if (first->line != place.line)
            throw Failure(place.Text() + ": is in line " + std::to_string(first->line) + " already; " +
                          (place.key.empty() ? "put all of it into one section" : "remove one of them"));
    }
}

// A name or value in another encoding loses bytes in the XML document with the method, so that the result could not be
// computed again from it.
void RequireUtf8(const MethodItem& item, const IniPlace& place) {
    if (qel::IsUtf8(item.text) && qel::IsUtf8(item.key)) return;
    throw Failure(place.Text() + " = " + item.text +
                  ": is not in UTF-8; save the settings as UTF-8, for example with " + kToUtf8);
}

}  // namespace

Method ReadMethodIni(const std::string& path) {
    const std::string text = ReadTextFile(path);
    if (text.find('\r') != std::string::npos && text.find('\n') == std::string::npos)
        throw Failure(path + ": its lines end with CR alone; save it with LF or CR LF");
    const CPrivateProfile ini(qel::FullPath(path));  // without a folder in its name it would be in the Windows folder
    return About(path, [&] {
        const std::vector<IniPlace> places = PlacesIn(text);
        RequireKnownOnce(places);
        Method method;
        const auto take = [&](const std::string& section, const std::string& key, const IniPlace& place) {
            MethodItem item{section, key, std::string(ini.Get(section.c_str(), key.c_str(), "")), place.line};
            RequireUtf8(item, place);
            return item;
        };
        for (const auto& [section, key] : kKeys) {
            const auto place = std::ranges::find_if(places, [&, section = section, key = key](const IniPlace& one) {
                return IsIn(one, section) && SameName(one.key, key);
            });
            if (place == places.end()) continue;
            MethodItem item = take(section, key, *place);
            if (!item.text.empty()) method.push_back(std::move(item));
        }
        for (const char* const section : kNamedSections) {
            for (const IniPlace& place : places) {
                if (IsIn(place, section) && place.hasValue) method.push_back(take(section, place.key, place));
            }
        }
        return method;
    });
}

}  // namespace titration
