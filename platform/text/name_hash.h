#pragma once

#include <cstdint>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// A number that is equal for two names when SameName holds, for tables of names. It depends on the code page.
QELLIB10_API std::uint32_t HashFoldedName(std::string_view name);

}  // namespace qel
