#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/shell/file_bytes.h"

namespace qel {

/// The text of @p key, in upper or lower case, in the VersionNote of a program or shared library of 64 bits,
/// little-endian.
/// @throws DataError when its headers point outside the file
std::optional<std::string> TextOfElfNotes(const FileBytes& file, std::string_view key);

}  // namespace qel
