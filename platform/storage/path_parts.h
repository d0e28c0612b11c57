#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// The position after the last separator of either kind, else after a drive, else 0.
std::size_t NameStart(std::string_view path);

/// The next separator of either kind at or after @p from, else the path's size.
std::size_t FindSeparator(std::string_view path, std::size_t from = 0);

/// Whether @p path names the root folder, a drive or a share, and nothing inside it. @throws CFileException like
/// ToPosixPath
bool IsRoot(std::string_view path);

/// The path that a symbolic link at @p posixPath leads to, even if nothing exists there yet; else the path itself.
/// @throws CFileException with @p name; 5 for another user's link in a folder where everybody may create files
std::string ResolveLinks(const std::string& posixPath, std::string_view name);

/// The folder that holds @p posixPath: "/" or "." if the path names no folder.
std::string PosixFolderOf(std::string_view posixPath);

}  // namespace qel
