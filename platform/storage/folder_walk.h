#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// A walk down a tree of folders, each step relative to the one before, that leaves the process's current folder alone
/// until it is asked to change it.
///
///     qel::FolderWalk walk("C:\\");
///     if (!walk.Enter("data") && !(walk.Create("data") && walk.Enter("data"))) walk.MakeCurrent();
class FolderWalk {
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

/// A path to a folder as a walk takes it: where it begins, and the names from there.
///
///     a\b                  the current folder    a, b
///     \a\b, /a/b           \                     a, b
///     C:\a\b, C:a\b        C:\                   a, b
///     \\server\share\a     \\server\share        a
struct FolderRoute {
    explicit FolderRoute(std::string_view path);

    std::string start;       // empty: the current folder
    std::string_view names;  // of the path; separators between them
};

/// Steps through @p names, and makes those that are missing. A separator at the end is ignored; an empty name in the
/// middle is none that could be made.
/// @return false when one could not be made: the walk is at its parent then
bool MakeFolders(FolderWalk& walk, std::string_view names);

}  // namespace qel
