#pragma once

#include <optional>
#include <span>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

enum class Language { English, Japanese };

/// The language of table texts: at the start the environment's QELLIB10_LANGUAGE (`ja`, else English). The code page
/// does not matter.
QELLIB10_API Language TableLanguage() noexcept;
QELLIB10_API void SetTableLanguage(Language language) noexcept;

/// One text of a table in both languages, in UTF-8. If one is null or empty, the other is used for both; an id with two
/// empty texts counts as missing.
struct StringTableEntry {
    UINT id;
    const char* english;
    const char* japanese;
};

/// Adds a table of the application. Its ids override those of tables registered before. The entries must live as long
/// as the process. Safe from any thread.
QELLIB10_API void RegisterStringTable(std::span<const StringTableEntry> entries);

/// The text of @p id in the current language, converted to the process's code page; nothing if no table has it. Safe
/// from any thread.
QELLIB10_API std::optional<CString> LookUpString(UINT id);

}  // namespace qel
