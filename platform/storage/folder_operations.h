#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// Makes the last folder of @p path. @throws CFileException 183 when the name exists, 3 when the folder before it does
/// not
QELLIB10_API void CreateFolder(std::string_view path);

/// Removes an empty folder. @throws CFileException 145 when it is not empty, 267 for a file or a link, 2 or 3 when
/// missing
QELLIB10_API void RemoveFolder(std::string_view path);

/// The process's current folder.
/// @throws CFileException when it cannot be entered
QELLIB10_API void SetCurrentFolder(std::string_view path);

/// A walk down a tree of folders, each step relative to the one before, that leaves the process's current folder alone
/// until it is asked to change it.
///
///     qel::FolderWalk walk("C:\\");
///     if (!walk.Enter("data") && !(walk.Create("data") && walk.Enter("data"))) walk.MakeCurrent();
class QELLIB10_API FolderWalk {
public:
    /// Begins at @p start, the empty path meaning the current folder.
    /// @throws CFileException when it cannot be entered
    explicit FolderWalk(std::string_view start);

    /// Steps into the folder @p name (a single name; "." and ".." too). @return false: the walk stands where it stood
    bool Enter(std::string_view name);
    /// Makes the folder @p name; one that is there already, perhaps by another process just now, counts as made.
    bool Create(std::string_view name);
    /// Makes the folder where the walk stands the process's current one.
    bool MakeCurrent() const;

private:
    Descriptor m_folder;
};

}  // namespace qel
