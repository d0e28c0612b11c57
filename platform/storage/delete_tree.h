#pragma once

#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// Deletes a folder with all that is in it, up to the first failure. Links are deleted, never followed, also when one
/// takes the place of a folder meanwhile. What is gone already is no failure, and neither is a missing @p folder.
/// @throws CFileException 5 for a read-only file and for the root folder, of a drive or a share as well, 32 for a file
/// that is open anywhere, 206 below 1,000 levels, 267 when @p folder is a file or a link to one
QELLIB10_API void DeleteTree(std::string_view folder);

}  // namespace qel
