#pragma once

#include <span>

#include "qellib10/platform/text/string_table.h"

// Texts that the library itself depends on, such as the marks of its file formats. An application's table may replace
// texts that people read, but not these.
namespace qel {

/// Registers the library's own table; in LookUpString the application's tables come first.
void RegisterOwnStringTable(std::span<const StringTableEntry> entries);

/// Like LookUpString, but only from the library's own table.
std::optional<CString> LookUpOwnString(UINT id);

}  // namespace qel
