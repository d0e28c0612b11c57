#pragma once

#include "qellib10/platform/storage/file.h"
#include "qellib10/secure/history_cabinet_file.h"

// Headers as they stand in a cabinet's file, whose position stays. What is not there is CFileException::endOfFile.
namespace qel {

/// As its header tells; the file may end before its data do.
struct StoredVersion {
    _CAB_VERSIONHEADER header;
    ULONGLONG dataAt, end;
};

/// @throws CFileException; DataError unless it is a right one
CabinetHeader ReadCabinetHeader(const CFile& cabinet);
/// @throws CFileException; DataError when none begins at @p offset
StoredVersion ReadVersionAt(const CFile& cabinet, ULONGLONG offset);

}  // namespace qel
