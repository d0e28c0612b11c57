#pragma once

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// The checksums of the first @p size bytes of an open file, or of what there is of them; 0: of all. The position
/// stays.
/// @throws CFileException
CheckSums CheckSumsOf(CFile& file, ULONGLONG size, CheckSums::Wanted wanted = CheckSums::kBoth);

}  // namespace qel
