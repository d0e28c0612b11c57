#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "qellib10/platform/crypto/password_cost.h"
#include "qellib10/platform/crypto/secret_bytes.h"

namespace qel {

/// How a secret is sealed under a password: Argon2id (version 1.3, one lane) makes a key of the password, under which
/// XChaCha20-Poly1305 (the IETF's form) enciphers. Nothing of this is secret.
struct PasswordSeal {
    /// What a guess costs at least: about half a second and 256 MiB, libsodium's MODERATE.
    static constexpr PasswordCost kUsual = {.passes = 3, .memory = std::uint64_t{256} << 20};
    static constexpr std::size_t kTagSize = 16;

    PasswordCost cost = kUsual;
    std::array<std::byte, 16> salt = {};
    std::array<std::byte, 24> nonce = {};

    bool operator==(const PasswordSeal&) const = default;
};

/// One for a single use: salt and nonce are random.
/// @throws DataError without a source of random numbers
PasswordSeal NewPasswordSeal(const PasswordCost& cost = PasswordSeal::kUsual);

/// @param header not enciphered, but Unseal finds every change of it
/// @return kTagSize bytes more than @p secret has
/// @throws DataError for a cost out of range; std::bad_alloc when the memory is not there
std::vector<std::byte> Seal(const PasswordSeal& seal, std::string_view password, std::string_view header,
                            const SecretBytes& secret);

/// @return nothing for another password, header or seal, or for changed bytes: nobody can say which. Throws as
/// above.
std::optional<SecretBytes> Unseal(const PasswordSeal& seal, std::string_view password, std::string_view header,
                                  std::span<const std::byte> sealed);

}  // namespace qel
