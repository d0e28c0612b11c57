#pragma once

#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// All bytes of an open file; its position is after them then.
/// @throws DataError for a file of 2 GiB or more, or of more than the process's limit of memory, before any is taken,
/// and for one that becomes shorter meanwhile; CFileException; std::bad_alloc
std::string ReadWholeFile(CFile& file);
/// The same of the file at @p path, which nobody may write to meanwhile.
QELLIB10_INTERNAL_API std::string ReadWholeFile(const char* path);

}  // namespace qel
