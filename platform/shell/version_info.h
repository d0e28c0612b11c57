#pragma once

#include <optional>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// The text of @p key ("FileVersion", "ProductName" ..., in upper or lower case) in a program file. A Windows program
/// of 32 or 64 bits has it in its version resource, where the first language with the key is used; a program of this
/// system has it in the note that VersionNote makes. Nothing if there is none. The file may be damaged or malicious:
/// nothing is read past its end, and only a little is read at all.
/// @throws CFileException when reading fails, DataError when its data contradict each other
QELLIB10_API std::optional<CString> VersionText(CFile& file, std::string_view key);

}  // namespace qel
