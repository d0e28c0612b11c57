#pragma once

#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

// Operations on files by name. All throw CFileException: 2 for a missing file, 3 for a missing folder, 5 for the
// read-only attribute, 32 for a file that is open in any program that uses this library, 123 and similar for a bad
// name. A file is read-only if its mode has no write bit; this holds for root as well.
namespace qel {

/// Copies the bytes, the time of the last write and the read-only attribute. A new file gets the mode of @p source less
/// the umask; a replaced file keeps its own rights. @p source may be open for writing elsewhere. The copy is on disk
/// when the operation returns. It appears, or replaces @p target, in one step. Exception: if the target's folder is not
/// writable, the target is written in place. It then keeps its rights (and its time, if it belongs to another user),
/// and gets its old bytes back if the new ones cannot be written.
/// @throws CFileException 80 when @p target exists and @p mustBeNew, 32 when it is @p source itself
QELLIB10_API void CopyFile(std::string_view source, std::string_view target, bool mustBeNew);

/// The same for a file that is moved, whose source is deleted afterwards: the copy gets the owner, access rights and
/// extended attributes of @p source, as far as the caller may set them, even if it replaces a file.
///
/// In both cases a file of TemporaryName (see IsTemporaryFile) gets the rights of the file that it replaces, or of a
/// new one.
QELLIB10_API void CopyToMove(std::string_view source, std::string_view target, bool mustBeNew);

/// The same into the new file @p waiting, which is renamed to @p target later: a file of TemporaryName gets the rights
/// of the file that is now at @p target.
QELLIB10_API void CopyToWait(std::string_view source, std::string_view waiting, std::string_view target);

/// Renames a file or a folder, within its folder or to another one. A file is moved to another volume by copying and
/// deleting; so is a file of TemporaryName anywhere, because it gets the rights of a new file. A file moved onto itself
/// does not change.
/// @throws CFileException 183 when @p target exists, 17 for a folder that would move to another volume
QELLIB10_API void MoveFile(std::string_view source, std::string_view target);

/// Deletes a file; for a symbolic link, the link. @throws CFileException 5 for a folder
QELLIB10_API void DeleteFile(std::string_view name);

}  // namespace qel
