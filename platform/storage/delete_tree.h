#pragma once

#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// Deletes a folder and everything in it, and stops at the first failure. Links are deleted, never followed, even if
/// one replaces a folder meanwhile. It is not a failure if something is already gone, nor if @p folder is missing.
/// @throws CFileException 5 for a read-only file and for the root folder of a drive or share, 32 for a file that is
/// open anywhere, 206 deeper than 1,000 levels, 267 when @p folder is a file or a link to one
QELLIB10_API void DeleteTree(std::string_view folder);

}  // namespace qel
