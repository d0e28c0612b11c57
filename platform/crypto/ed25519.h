#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace qel {

using Ed25519Key = std::array<std::byte, 32>;  ///< a public key
using Ed25519Signature = std::array<std::byte, 64>;

/// @param seed 32 bytes, the private key as RFC 8032 has it
/// @throws DataError
Ed25519Key PublicKeyOf(std::span<const std::byte> seed);
Ed25519Signature SignEd25519(std::span<const std::byte> seed, std::string_view message);

/// Whether the owner of @p key has signed @p message. No bytes make it throw.
bool IsSignedBy(const Ed25519Key& key, std::string_view message, const Ed25519Signature& signature);

}  // namespace qel
