#include "demo/method/ini_places.h"

#include <qellib10/qellib10.h>

#include "demo/support/text_file.h"

namespace titration {
namespace {

constexpr std::string_view kBlanks = "\t\v\f\r \x1A";  // those of the library's settings

}  // namespace

std::string IniPlace::Text() const {
    return "line " + std::to_string(line) + ", [" + section + "]" + (key.empty() ? "" : " " + key);
}

std::vector<IniPlace> PlacesIn(std::string_view text) {
    std::vector<IniPlace> places;
    std::string section;
    std::size_t number = 0;
    for (std::string_view line : Lines(text)) {
        ++number;
        line = qel::Trimmed(line, kBlanks);
        if (line.empty() || line.starts_with(';')) continue;
        const std::size_t bracket = line.starts_with('[') ? line.rfind(']') : std::string_view::npos;
        if (bracket != std::string_view::npos) {
            section = qel::Trimmed(line.substr(1, bracket - 1), kBlanks);
            places.push_back({number, section, "", false});
            continue;
        }
        const std::size_t equals = line.find('=');
        places.push_back({number, section, std::string(qel::Trimmed(line.substr(0, equals), kBlanks)),
                          equals != std::string_view::npos});
    }
    return places;
}

}  // namespace titration
