#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace qel {

using P256Key = std::array<std::byte, 65>;  ///< a public key: 4, then x and y of the point, the highest byte first
using P256Signature = std::array<std::byte, 64>;  ///< r and s, the highest byte first

/// Whether it is a point of the curve nistp256 in this form. No bytes make it throw.
bool IsP256Key(const P256Key& key);

/// Whether the owner of @p key has signed @p message, with SHA-256. No bytes make it throw.
bool IsSignedBy(const P256Key& key, std::string_view message, const P256Signature& signature);

}  // namespace qel
