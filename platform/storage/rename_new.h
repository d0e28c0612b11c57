#pragma once

#include <string>

namespace qel {

/// Renames without replacing anything. @return 0, or the errno: EEXIST where @p target exists
int RenameNew(const std::string& source, const std::string& target);

}  // namespace qel
