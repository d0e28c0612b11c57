#pragma once

#include <string>
#include <string_view>

struct stat;

namespace qel {

/// Gives the open file owner and mode of @p old, and the access control list of the same file at @p pattern. Only root
/// can give a file away, and others only to groups of theirs. Where the owner is not kept, neither is what the mode
/// says beyond reading, writing and executing; where the group is not, the group may do no more than others: so nobody
/// may do more with the file than with @p pattern. @p name is what exceptions call the file.
/// @throws CFileException
void GiveAccessRights(int file, const struct stat& old, const std::string& pattern, std::string_view name);

/// Gives the open file the extended attributes of the file at @p pattern, as far as the caller may read and set them,
/// but for those that are rights or that sign the bytes of @p pattern.
/// @throws CFileException when one cannot be read though the caller may
void GiveAttributes(int file, const std::string& pattern, std::string_view name);

}  // namespace qel
