#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// Position behind the last separator of either kind, else behind a drive, else 0.
std::size_t NameStart(std::string_view path);

/// The folder that holds @p posixPath: "/" or "." where no folder is named.
std::string PosixFolderOf(std::string_view posixPath);

}  // namespace qel
