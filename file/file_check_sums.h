#pragma once

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/storage/file.h"

namespace qel {

/// The checksums of the first @p size bytes of an open file, or of all bytes if it is shorter; 0: of all. The position
/// does not change.
/// @throws CFileException
CheckSums CheckSumsOf(CFile& file, ULONGLONG size, CheckSums::Wanted wanted = CheckSums::kBoth);

/// Those of @p count bytes at @p offset of a file, whose position does not change.
/// @throws CFileException; with genericException if it has fewer
CheckSums CheckSumsAt(const CFile& file, ULONGLONG offset, ULONGLONG count);
/// The same, after the bytes that @p sums already includes.
void AddCheckSumsAt(CheckSums& sums, const CFile& file, ULONGLONG offset, ULONGLONG count);

/// Copies @p count bytes at @p offset of @p from, whose position does not change, to the position of @p to, and
/// computes their checksums at the same time.
/// @throws CFileException; with genericException if @p from has fewer bytes; those that it has are written
CheckSums CopyWithCheckSums(const CFile& from, ULONGLONG offset, CFile& to, ULONGLONG count);

}  // namespace qel
