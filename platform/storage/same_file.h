#pragma once

#include <string>

struct stat;

namespace qel {

/// Whether both describe the same file, possibly under two names.
bool IsSameFile(const struct stat& a, const struct stat& b);

/// Whether the file that was opened is still at @p posixPath: another process may have replaced or removed it.
bool IsStillAt(const std::string& posixPath, const struct stat& opened);

}  // namespace qel
