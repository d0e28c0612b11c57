#pragma once

#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/types.h"
#include "qellib10/secure/history_renew_info.h"

namespace qel {

/// A file of renewal records, one after the other, as it was found. CHistoryRenewInfo alone does not report whether it
/// has read a record or passed over something else.
struct RenewalRecords {
    std::vector<CHistoryRenewInfo> whole;
    ULONGLONG end = 0;   ///< where the last whole one ends; the file's length when nothing else is in it
    bool isCut = false;  ///< the file ends within the next one, because a program ended while it wrote
};

/// Reads records from the file's position on, up to the first that is cut or is not a record.
/// @param file its position is undefined afterwards. @throws CFileException where it cannot be read
QELLIB10_API RenewalRecords ReadRenewalRecords(CFile& file);

}  // namespace qel
