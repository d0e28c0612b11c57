#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

// Paths of this library are text in the process's code page, their separator the backslash; a slash works as well. At
// the moment of a system call they become POSIX paths in UTF-8.
namespace qel {

/// @throws CFileException (badPath): 3 for the empty path, 206 for MAX_PATH bytes and more
QELLIB10_API std::string ToPosixPath(std::string_view path);

/// @p path with the current folder put in front of a relative one, backslashes throughout.
/// @throws CFileException when the current folder is gone
QELLIB10_API CString FullPath(std::string_view path);

/// Position behind the last separator of either kind; 0 when there is none.
std::size_t NameStart(std::string_view path);

}  // namespace qel
