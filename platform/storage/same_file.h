#pragma once

#include <string>

struct stat;

namespace qel {

/// Whether both describe the same file, perhaps under two names.
bool IsSameFile(const struct stat& a, const struct stat& b);

/// Whether the file that was opened still stands at @p posixPath: another process may have put a new one, or none, in
/// its place.
bool IsStillAt(const std::string& posixPath, const struct stat& opened);

}  // namespace qel
