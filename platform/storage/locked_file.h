#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// Opens a file for reading and writing as the only process that changes it: others that open it in this way must wait
/// until the descriptor is closed, or its process ends. Reading is not blocked, nor are openings by CFile. For files
/// that are replaced by rename: the result is the file that is at @p posixPath now, never one that was replaced while
/// waiting for the lock. @p name is what exceptions call it.
/// @param flags of open(), in addition to O_RDWR
/// @return no descriptor when the file does not exist and @p flags do not create it
/// @throws CFileException 5 for folders and devices, 33 when @p wait ends before the lock is free
Descriptor OpenLocked(const std::string& posixPath, int flags, std::string_view name, Backoff& wait);

}  // namespace qel
