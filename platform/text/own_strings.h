#pragma once

#include <span>

#include "qellib10/platform/text/string_table.h"

// Texts that the library itself depends on, such as the marks of its file formats: a table of the application may
// replace what people read, but not these.
namespace qel {

/// Registers the library's own table, which the application's tables win over in LookUpString.
void RegisterOwnStringTable(std::span<const StringTableEntry> entries);

/// As LookUpString, from the library's own table alone.
std::optional<CString> LookUpOwnString(UINT id);

}  // namespace qel
