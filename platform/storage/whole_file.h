#pragma once

#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// All bytes of an open file; the position is then after them.
/// @throws DataError for a file of 2 GiB or more, or larger than the process's memory limit (before memory is taken),
/// and for one that becomes shorter meanwhile; CFileException; std::bad_alloc
std::string ReadWholeFile(CFile& file);
/// The same for the file at @p path, which nobody may write to meanwhile.
QELLIB10_INTERNAL_API std::string ReadWholeFile(const char* path);

}  // namespace qel
