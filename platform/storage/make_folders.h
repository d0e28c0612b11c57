#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/folder_walk.h"

namespace qel {

/// A path to a folder as a walk takes it: where it begins, and the names from there.
///
///     a\b                  the current folder    a, b
///     \a\b, /a/b           \                     a, b
///     C:\a\b, C:a\b        C:\                   a, b
///     \\server\share\a     \\server\share        a
struct QELLIB10_API FolderRoute {
    explicit FolderRoute(std::string_view path);

    std::string start;       // empty: the current folder
    std::string_view names;  // of the path; separators between them
};

/// Steps through @p names, and makes those that are missing. A separator at the end is ignored; an empty name in the
/// middle is none that could be made.
/// @return false when one could not be made: the walk stands in front of it
QELLIB10_API bool MakeFolders(FolderWalk& walk, std::string_view names);

/// Makes every missing folder of @p path, as far as that works. @throws CFileException when the start is missing
QELLIB10_API void MakeFolders(std::string_view path);

}  // namespace qel
