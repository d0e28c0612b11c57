#pragma once

#include <string>

#include "qellib10/platform/export.h"

namespace qel {

/// Renames without replacing anything. @return 0, or the errno: EEXIST where @p target exists
QELLIB10_INTERNAL_API int RenameNew(const std::string& source, const std::string& target);

}  // namespace qel
