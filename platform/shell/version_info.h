#pragma once

#include <optional>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// The text of @p key ("FileVersion", "ProductName" ..., in any case) that a program file carries: one for Windows, of
/// 32 or 64 bits, in its version resource, the first of its languages counting that has the key; one for this system in
/// the note that VersionNote makes. Nothing when it carries none. The file may be damaged or made to harm: nothing is
/// read beyond its end, and little is read at all.
/// @throws CFileException when reading fails, DataError when what is carried contradicts itself
QELLIB10_API std::optional<CString> VersionText(CFile& file, std::string_view key);

}  // namespace qel
