#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

// A secret in a file of its own that only its owner may read and write (mode 0600). Paths are the system's.
namespace qel {

/// Puts @p content into the file in one step.
/// @throws CFileException when the system refuses; the old file stays
QELLIB10_INTERNAL_API void WritePrivateFile(const std::string& posixPath, std::string_view content);

/// The file's content, read at once; the empty text when there is no file, when others may read it, or when it is
/// longer than @p longest bytes.
/// @throws CFileException when it cannot be read
QELLIB10_INTERNAL_API std::string ReadPrivateFile(const std::string& posixPath, std::size_t longest);

/// A missing file is fine. @throws CFileException
QELLIB10_INTERNAL_API void RemovePrivateFile(const std::string& posixPath);

/// Makes an empty file that only its owner can read, unless something has the name; whether it could be made is for
/// whoever opens it to find out.
QELLIB10_INTERNAL_API void MakePrivateFile(const std::string& posixPath);

}  // namespace qel
