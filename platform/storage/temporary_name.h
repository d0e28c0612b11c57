#pragma once

#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

struct stat;

namespace qel {

/// The folder for temporary files, with a backslash at the end: the first of TMPDIR, TMP and TEMP that is an absolute
/// path, else `\tmp\`. It may not exist.
QELLIB10_API CString TemporaryFolder();

/// A name in @p folder: the first three bytes of @p prefix (no half character), four hexadecimal digits and `.TMP`.
/// @param number its lower 16 bits are the digits, and no file is created. 0: a free number is chosen and the empty
/// file is created, readable by its owner only
/// @throws CFileException 123 for a prefix with a separator in those bytes, 267 when the folder is missing, 111 when
/// its name is longer than 246 bytes, 80 when no number is free
QELLIB10_API CString TemporaryName(std::string_view folder, std::string_view prefix, UINT number = 0);

/// Whether TemporaryName has made the file, judged by name and mode. Its mode does not apply to its later use: when it
/// is copied or moved, it gets the rights that are usual there.
bool IsTemporaryFile(std::string_view path, const struct stat& status);

}  // namespace qel
