#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/crypto/password_seal.h"
#include "qellib10/record/ssh_key.h"

namespace qel {

/// The file of a person's key: one line of JSON in its only form (see JsonWriter), docs/formats.md.
///
/// Everything before the sealed key is bound to it: who changes the user's name or the public key has a file that no
/// password opens. The sum at the end is for accidents; anybody can compute it. It is compared before a password
/// costs time.
struct PersonKeyFile {
    static constexpr std::size_t kSeedSize = 32, kLongestName = 256, kLongestPassword = 1024, kLongestFile = 4096;
    // A reader does what the file says: less would be quickly guessed, more would stop the program for minutes.
    static constexpr PasswordCost kLeast = PasswordSeal::kUsual;
    static constexpr PasswordCost kMost = {.passes = 8, .memory = std::uint64_t{1} << 30};

    std::string user, name;
    SshPublicKey key;
    PasswordSeal seal;
    std::array<std::byte, kSeedSize + PasswordSeal::kTagSize> sealed = {};

    bool operator==(const PersonKeyFile&) const = default;

    /// The bytes before the sealed key.
    std::string Header() const;
    /// The file, with its line feed. @throws DataError for names that cannot be
    std::string Text() const;
    /// @throws DataError for each text that is not, byte for byte, what Text would make of its content, and for a cost
    /// out of range
    static PersonKeyFile OfText(std::string_view text);

    /// @throws DataError for a new password that is empty or too long
    static void RequireUsable(std::string_view password);
    /// Seals @p seed, which gives `key`, by a seal that was not used before.
    void Close(const SecretBytes& seed, std::string_view password, const PasswordCost& cost = PasswordSeal::kUsual);
    /// @return nothing for another password
    /// @throws DataError when the seed belongs to another public key
    std::optional<SecretBytes> Open(std::string_view password) const;
};

}  // namespace qel
