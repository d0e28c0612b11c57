#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// Position behind the last separator of either kind, else behind a drive, else 0.
std::size_t NameStart(std::string_view path);

/// The next separator of either kind from @p from on, else the path's size.
std::size_t FindSeparator(std::string_view path, std::size_t from = 0);

/// What a symbolic link at @p posixPath leads to; the path itself where nothing stands, and for a link to nothing.
/// @throws CFileException with @p name
std::string BehindLinks(const std::string& posixPath, std::string_view name);

/// The folder that holds @p posixPath: "/" or "." where no folder is named.
std::string PosixFolderOf(std::string_view posixPath);

}  // namespace qel
