#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// Position behind the last separator of either kind, else behind a drive, else 0.
std::size_t NameStart(std::string_view path);

/// The next separator of either kind from @p from on, else the path's size.
std::size_t FindSeparator(std::string_view path, std::size_t from = 0);

/// Whether @p path names the root folder, a drive or a share, and nothing in it. @throws CFileException as ToPosixPath
bool IsRoot(std::string_view path);

/// What a symbolic link at @p posixPath leads to, also where that is not there yet; else the path itself.
/// @throws CFileException with @p name, 5 for somebody else's link in a folder where everybody may make files
std::string ResolveLinks(const std::string& posixPath, std::string_view name);

/// The folder that holds @p posixPath: "/" or "." where no folder is named.
std::string PosixFolderOf(std::string_view posixPath);

}  // namespace qel
