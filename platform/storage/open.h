#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/types.h"

namespace qel {

/// Opens a regular file by CFile's flags: position 0, and empty when they say so.
/// @param name the caller's name, for the exception
/// @throws CFileException with the cause
Descriptor OpenFile(const std::string& posixPath, UINT flags, std::string_view name);

}  // namespace qel
