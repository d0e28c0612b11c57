#pragma once

#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

// What the system does to files by name. All throw CFileException: 2 for a missing file, 3 for a missing folder, 5 for
// the read-only attribute, 32 for a file that is open anywhere in a program of ours, 123 and the like for a bad name.
// The read-only attribute is a mode without any write bit, and is obeyed for root as well.
namespace qel {

/// Copies the bytes, the time of the last write and the read-only attribute. A new file has the mode of @p source, less
/// the umask, one that is replaced keeps its own rights. @p source may be open for writing elsewhere. The copy is on
/// the disk when the operation returns; it appears, or replaces @p target, in one step, unless the target's folder is
/// closed to writing: then the target is written in place, keeps its rights, as another user's its time, too, and has
/// its old bytes back when the new ones cannot be written.
/// @throws CFileException 80 when @p target exists and @p mustBeNew, 32 when it is @p source itself
QELLIB10_API void CopyFile(std::string_view source, std::string_view target, bool mustBeNew);

/// The same for a file that is moved, whose source is to be deleted then: the copy has owner, access rights and
/// extended attributes of @p source, as far as the caller may set them, also where it replaces a file.
///
/// Either way a file of TemporaryName (see IsTemporaryFile) becomes one with the rights of the file that it replaces,
/// or of a new one.
QELLIB10_API void CopyToMove(std::string_view source, std::string_view target, bool mustBeNew);

/// The same into the new file @p waiting, which is to be renamed to @p target later: a file of TemporaryName gets the
/// rights of the file that is at @p target now.
QELLIB10_API void CopyToWait(std::string_view source, std::string_view waiting, std::string_view target);

/// Renames a file or a folder, within its folder or into another one; a file is moved to another volume by copying and
/// deleting, and so is a file of TemporaryName anywhere, since it gets the rights of a new one. A file moved onto
/// itself stays as it is.
/// @throws CFileException 183 when @p target exists, 17 for a folder that would go to another volume
QELLIB10_API void MoveFile(std::string_view source, std::string_view target);

/// Deletes a file; of a symbolic link the link. @throws CFileException 5 for a folder
QELLIB10_API void DeleteFile(std::string_view name);

}  // namespace qel
