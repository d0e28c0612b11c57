#pragma once

#include <optional>
#include <string>
#include <string_view>

// Changes to the bytes of an INI file. Only the first section of a name, and in it the first entry of a name, is meant.
// All other bytes stay: comments, blank lines, line ends of either kind, further sections and entries of the same name.
// New lines end in CR and LF. Names are trimmed; texts with CR, LF or zero in them are refused.
namespace qel {

/// The bytes with the entry. An existing one keeps the spelling of its name and its line end; a new one follows the
/// last line of its section that is not blank; a new section follows the last line of the file.
/// @return nothing when the lines would not read back as that section and that entry
std::optional<std::string> WithIniValue(std::string_view bytes, std::string_view section, std::string_view key,
                                        std::string_view value);

/// The bytes without the entry; the header stays, also when nothing else is left of the section.
std::string WithoutIniKey(std::string_view bytes, std::string_view section, std::string_view key);

/// The bytes without the header and all lines up to the next one.
std::string WithoutIniSection(std::string_view bytes, std::string_view section);

/// The bytes with @p entries, each ending in a zero, up to an empty one, as the lines of the section; comments in it
/// go.
/// @return nothing when a line would not read back as one
std::optional<std::string> WithIniEntries(std::string_view bytes, std::string_view section, std::string_view entries);

}  // namespace qel
