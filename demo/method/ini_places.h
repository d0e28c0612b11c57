#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace titration {

/// The place of something in an INI file, which the library's settings do not report.
struct IniPlace {
    std::size_t line = 0;      // counts from 1
    std::string section, key;  // no key: the line with the section's name
    bool hasValue = false;     // there is an equals sign after the key

    /// "line 7, [result] digits"
    std::string Text() const;
};

/// The lines of @p text that are not comments, in order.
std::vector<IniPlace> PlacesIn(std::string_view text);

}  // namespace titration
