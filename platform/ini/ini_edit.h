#pragma once

#include <optional>
#include <string>
#include <string_view>

// Changes the bytes of an INI file. Only the first section with a name, and the first entry with a name in it, is used.
// All other bytes stay: comments, blank lines, line ends of either kind, further sections and entries with the same
// name. New lines end in CR and LF. Names are trimmed; texts that contain CR, LF or zero are refused.
namespace qel {

/// The bytes with the entry. An existing one keeps the spelling of its name and its line end; a new one is put after
/// the last line of its section that is not blank; a new section is put after the last line of the file.
/// @return nothing if the lines would not read back as that section and that entry
std::optional<std::string> WithIniValue(std::string_view bytes, std::string_view section, std::string_view key,
                                        std::string_view value);

/// The bytes without the entry; the header stays, even if the section is then empty.
std::string WithoutIniKey(std::string_view bytes, std::string_view section, std::string_view key);

/// The bytes without the header and all lines up to the next one.
std::string WithoutIniSection(std::string_view bytes, std::string_view section);

/// The bytes with @p entries as the lines of the section. Each entry ends with a zero; an empty one ends the list.
/// Comments of the section are removed.
/// @return nothing if a line would not read back as one
std::optional<std::string> WithIniEntries(std::string_view bytes, std::string_view section, std::string_view entries);

}  // namespace qel
