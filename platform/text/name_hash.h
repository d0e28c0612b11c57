#pragma once

#include <cstdint>
#include <string_view>

namespace qel {

/// A number that is equal for two names if SameName holds, for tables of names. It depends on the code page.
std::uint32_t HashFoldedName(std::string_view name);

}  // namespace qel
