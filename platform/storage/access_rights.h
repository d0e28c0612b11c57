#pragma once

#include <string_view>

struct stat;

namespace qel {

class FileAttributes;

/// Where the bytes of a file come from that gets the rights of another one.
enum class Content {
    kNew,    // written by the caller: no program that may act for the file's owner or the system
    kMoved,  // those of the file whose rights it gets
};

/// Gives the open file owner and mode of @p old, and the access control list of the same file's @p attributes. Only
/// root can give a file away, and others only to groups of theirs. Where the group is not kept, group and others may do
/// no more than both might, and where the list is not, no more than those whom it names: so nobody but the new owner
/// may do more with the file than with the old one. Set-user-id and set-group-id are not given to new content, nor
/// where the owner is not kept. @p name is what exceptions call the file.
/// @throws CFileException
void GiveAccessRights(int file, const struct stat& old, const FileAttributes& attributes, Content content,
                      std::string_view name);

/// Gives the open file the extended attributes @p from, as far as the caller may read and set them and the file system
/// can hold them, but for the access control list, those that sign the former bytes and, with new content, the
/// capabilities of a program.
/// @throws CFileException when one cannot be read or set though the caller may
void GiveAttributes(int file, const FileAttributes& from, Content content, std::string_view name);

}  // namespace qel
