#pragma once

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// The checksums of the first @p size bytes of an open file, or of what there is of them; 0: of all. The position
/// stays.
/// @throws CFileException
CheckSums CheckSumsOf(CFile& file, ULONGLONG size, CheckSums::Wanted wanted = CheckSums::kBoth);

/// Those of @p count bytes at @p offset of a file, whose position stays.
/// @throws CFileException; with genericException when it has fewer
CheckSums CheckSumsAt(const CFile& file, ULONGLONG offset, ULONGLONG count);
/// The same, after the bytes that @p sums has got already.
void AddCheckSumsAt(CheckSums& sums, const CFile& file, ULONGLONG offset, ULONGLONG count);

/// Copies @p count bytes at @p offset of @p from, whose position stays, to the position of @p to, and computes their
/// checksums on the way.
/// @throws CFileException; with genericException when @p from has fewer bytes, those that it has are written then
CheckSums CopyWithCheckSums(const CFile& from, ULONGLONG offset, CFile& to, ULONGLONG count);

}  // namespace qel
