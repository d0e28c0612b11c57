#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace qel {

using Ed25519Key = std::array<std::byte, 32>;  ///< a public key
using Ed25519Signature = std::array<std::byte, 64>;

/// A private key that is ready to sign: preparing it costs nearly as much as a signature. Its memory is cleared at the
/// end. Several threads may sign at once. Everything throws DataError.
class Ed25519PrivateKey {
public:
    /// @param seed 32 bytes, the private key as RFC 8032 has it
    explicit Ed25519PrivateKey(std::span<const std::byte> seed);
    ~Ed25519PrivateKey();
    Ed25519PrivateKey(Ed25519PrivateKey&&) noexcept;
    Ed25519PrivateKey& operator=(Ed25519PrivateKey&&) noexcept;

    Ed25519Key PublicKey() const;
    Ed25519Signature Sign(std::string_view message) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The same of a key that is used once.
Ed25519Key PublicKeyOf(std::span<const std::byte> seed);
Ed25519Signature SignEd25519(std::span<const std::byte> seed, std::string_view message);

/// Whether the owner of @p key has signed @p message. No bytes make it throw.
bool IsSignedBy(const Ed25519Key& key, std::string_view message, const Ed25519Signature& signature);

}  // namespace qel
