#pragma once

#include <string_view>

struct stat;

namespace qel {

class FileAttributes;

/// Where the bytes come from that are written into a file with another file's rights.
enum class Content {
    kNew,    // written by the caller: not a program that may act for the file's owner or the system
    kMoved,  // the bytes of the file whose rights are copied
};

/// Sets the owner and mode of @p old on the open file, and the access control list from @p attributes of the same file.
/// Only root can change a file's owner; others can only change the group, to one of their own. If the group cannot be
/// kept, group and others get only what both were allowed. If the list cannot be kept, they get only what everybody
/// named in it was allowed. So nobody but the new owner can do more with the file than with the old one. Set-user-id
/// and set-group-id are not set on new content, nor when the owner is not kept. @p name is what exceptions call the
/// file.
/// @throws CFileException
void GiveAccessRights(int file, const struct stat& old, const FileAttributes& attributes, Content content,
                      std::string_view name);

/// Copies the extended attributes @p from to the open file, as far as the caller may read and set them and the file
/// system can hold them. Not copied: the access control list, signatures of the former bytes and, with new content, a
/// program's capabilities.
/// @throws CFileException when one cannot be read or set although the caller is allowed to
void GiveAttributes(int file, const FileAttributes& from, Content content, std::string_view name);

}  // namespace qel
