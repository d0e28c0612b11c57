#pragma once

#include <optional>
#include <vector>

#include "tool.h"

namespace tool {

/// Where settings are: in an INI file, or below a key of a root.
struct Place {
    std::string given;    ///< on the command line
    CString location;     ///< as CPrivateProfile takes it
    HKEY root = nullptr;  ///< null: an INI file
    CString key;          ///< below the root
};
/// @param location as on the command line.
/// @throws CLI::ValidationError for a root without a key, and one that is not known; Failure for a file that cannot be
/// named
Place PlaceOf(const std::string& location);

/// In UTF-8.
struct Setting {
    std::string text;  ///< bytes as hexadecimal digits
    Json json;
};
/// @throws Failure when there is no such file, and when it or the registry cannot be read
std::optional<Setting> ReadSetting(const Place& place, const std::string& section, const std::string& key);

struct Section {
    std::string name;
    std::vector<std::pair<std::string, Setting>> settings;
};
/// Those of a key of the registry are the keys below it; its own values are section "", if it has any.
/// @throws Failure when file or key are missing or cannot be read
std::vector<Section> ReadSections(const Place& place);

}  // namespace tool
