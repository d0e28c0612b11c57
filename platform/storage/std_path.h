#pragma once

#include <filesystem>

#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/string.h"

// Converts between paths of this library and those of the standard library, which have slashes and UTF-8 on this
// system. Do not use a CString as a std::filesystem::path directly: in code page 932 its bytes would name another file.
namespace qel {

/// @throws CFileException like ToPosixPath
inline std::filesystem::path ToStdPath(const CString& path) { return ToPosixPath(path.View()); }

inline CString FromStdPath(const std::filesystem::path& path) { return ToLibraryPath(path.native()); }

}  // namespace qel
