#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// Opens a file for reading and writing as the only one who changes it: others that open it so are kept out until the
/// descriptor is closed, also by the end of a process. Reading is free, and so are openings by CFile. For files that
/// are replaced by rename: the file is the one that stands at @p posixPath, never one that was replaced while the lock
/// was waited for. @p name is what exceptions call it.
/// @param flags of open() beside O_RDWR
/// @return no descriptor when there is no file and @p flags do not make one
/// @throws CFileException 5 for folders and devices, 33 when @p wait comes to its end before the lock is had
Descriptor OpenLocked(const std::string& posixPath, int flags, std::string_view name, Backoff& wait);

}  // namespace qel
