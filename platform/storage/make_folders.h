#pragma once

#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// Creates every missing folder of @p path, as far as possible. @throws CFileException when the start is missing
QELLIB10_API void MakeFolders(std::string_view path);

}  // namespace qel
