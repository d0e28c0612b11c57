#pragma once

#include <optional>
#include <vector>

#include "tool.h"

namespace tool {

/// The place of settings: an INI file, or a key below a root.
struct Place {
    std::string given;    ///< on the command line
    CString location;     ///< in the form for CPrivateProfile
    HKEY root = nullptr;  ///< null: an INI file
    CString key;          ///< below the root
};
/// @param location as on the command line.
/// @throws CLI::ValidationError for a root without a key, and an unknown one; Failure for an invalid file name
Place PlaceOf(const std::string& location);

/// In UTF-8.
struct Setting {
    std::string text;  ///< bytes as hexadecimal digits
    Json json;
};
/// @throws Failure if there is no such file, and if it or the registry cannot be read
std::optional<Setting> ReadSetting(const Place& place, const std::string& section, const std::string& key);

struct Section {
    std::string name;
    std::vector<std::pair<std::string, Setting>> settings;
};
/// In the registry the sections are the keys below it; its own values are section "", if it has any.
/// @throws Failure if file or key are missing or cannot be read
std::vector<Section> ReadSections(const Place& place);

}  // namespace tool
