#pragma once

#include "qellib10/platform/storage/file_status.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// The status of the file or folder at @p path.
/// @throws CFileException if there is none or it cannot be looked at
QELLIB10_INTERNAL_API CFileStatus RequireStatus(const CString& path);

}  // namespace qel
