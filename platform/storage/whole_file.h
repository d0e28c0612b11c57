#pragma once

#include <string>

#include "qellib10/platform/storage/file.h"

namespace qel {

/// All bytes of an open file; its position is behind them then.
/// @throws DataError for a file of 2 GiB or more, and for one that becomes shorter meanwhile; CFileException
std::string ReadWholeFile(CFile& file);
/// The same of the file at @p path, which nobody may write to meanwhile.
std::string ReadWholeFile(const char* path);

}  // namespace qel
