#pragma once

#include <string>

// A secret in a file of its own that only its owner may read and write (mode 0600). Paths are the system's.
namespace userstore {

/// Puts @p token into the file in one step.
/// @throws StoreError or CFileException when the system refuses; the old file stays
void WriteToken(const std::string& posixPath, const std::string& token);

/// The file's content; the empty text when there is none, when others may read it, or when it is too long for a token.
std::string ReadToken(const std::string& posixPath);

/// A missing file is fine. @throws StoreError
void RemoveToken(const std::string& posixPath);

}  // namespace userstore
