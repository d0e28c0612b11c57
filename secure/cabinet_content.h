#pragma once

#include "qellib10/platform/storage/file.h"
#include "qellib10/secure/history_cabinet_file.h"

// Headers as they are in a cabinet's file, whose position does not change. If one is missing:
// CFileException::endOfFile.
namespace qel {

/// As its header says; the file may end before its data do.
struct StoredVersion {
    _CAB_VERSIONHEADER header;
    ULONGLONG dataAt, end;
};

/// @throws CFileException; DataError unless it is correct
CabinetHeader ReadCabinetHeader(const CFile& cabinet);
/// @throws CFileException; DataError if none starts at @p offset
StoredVersion ReadVersionAt(const CFile& cabinet, ULONGLONG offset);

}  // namespace qel
