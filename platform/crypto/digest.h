#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace qel {

using Sha256Digest = std::array<std::byte, 32>;
using Sha512Digest = std::array<std::byte, 64>;

/// @throws DataError when the library for it refuses
Sha256Digest Sha256(std::string_view bytes);
Sha512Digest Sha512(std::string_view bytes);

}  // namespace qel
