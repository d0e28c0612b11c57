#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// Walks down a tree of folders, each step relative to the one before. It does not change the process's current folder
/// until MakeCurrent.
///
///     qel::FolderWalk walk("C:\\");
///     if (!walk.Enter("data") && !(walk.Create("data") && walk.Enter("data"))) walk.MakeCurrent();
class FolderWalk {
public:
    /// Starts at @p start; the empty path means the current folder.
    /// @throws CFileException when it cannot be entered
    explicit FolderWalk(std::string_view start);

    /// Enters the folder @p name (a single name; "." and ".." too). @return false: the walk stays where it was
    bool Enter(std::string_view name);
    /// Creates the folder @p name. A folder that already exists counts as created, also if another process has just
    /// made it.
    bool Create(std::string_view name);
    /// Makes the walk's folder the current folder of the process.
    bool MakeCurrent() const;

private:
    Descriptor m_folder;
};

/// A path to a folder, split into the start of a walk and the names from there.
///
///     a\b                  the current folder    a, b
///     \a\b, /a/b           \                     a, b
///     C:\a\b, C:a\b        C:\                   a, b
///     \\server\share\a     \\server\share        a
struct FolderRoute {
    explicit FolderRoute(std::string_view path);

    std::string start;       // empty: the current folder
    std::string_view names;  // of the path, with separators between them
};

/// Enters each of @p names and creates those that are missing. A separator at the end is ignored; an empty name in the
/// middle cannot be created.
/// @return false when one could not be created; the walk is then at its parent
bool MakeFolders(FolderWalk& walk, std::string_view names);

}  // namespace qel
