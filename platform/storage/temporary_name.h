#pragma once

#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

struct stat;

namespace qel {

/// The folder for temporary files, ending with a backslash: the first of TMPDIR, TMP and TEMP that is an absolute path,
/// else `\tmp\`. Whether it exists is not looked at.
QELLIB10_API CString TemporaryFolder();

/// A name in @p folder: the first three bytes of @p prefix (no half character), four hexadecimal digits and `.TMP`.
/// @param number the lower 16 bits stand in the name and nothing is made. 0: a free number is chosen and the empty file
/// is made, for its owner alone
/// @throws CFileException 123 for a prefix with a separator in those bytes, 267 when the folder is missing, 111 when
/// its name is longer than 246 bytes, 80 when no number is free
QELLIB10_API CString TemporaryName(std::string_view folder, std::string_view prefix, UINT number = 0);

/// Whether a file is one that TemporaryName has made, as far as name and mode show it. Such a mode says nothing about
/// what becomes of the file: where it is copied or moved to, it gets the rights that are usual there.
bool IsTemporaryFile(std::string_view path, const struct stat& status);

}  // namespace qel
