#pragma once

#include <string_view>

#include "qellib10/platform/export.h"

struct stat;

namespace qel {

/// Gives the open file the owner and the mode of @p pattern. Only root can give a file away; for others it stays
/// theirs, without what the mode says beyond reading, writing and executing. @return 0 or the errno
int GiveAccessRights(int file, const struct stat& pattern);

/// Gives the file @p name the access rights of @p pattern, which it is to replace later; a missing or read-only
/// @p pattern has none to give. @throws CFileException
QELLIB10_API void TakeAccessRights(std::string_view name, std::string_view pattern);

}  // namespace qel
