#pragma once

#include <compare>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/crypto/ed25519.h"
#include "qellib10/platform/crypto/secret_bytes.h"

namespace qel {

inline constexpr std::string_view kSshKeyType = "ssh-ed25519";

/// "SHA256:" and 43 characters, as ssh-keygen -l shows it, of a key of any kind in SSH's binary form.
std::string SshFingerprint(std::string_view blob);

/// A public key of the kind ssh-ed25519, the only one that signs entries.
struct SshPublicKey {
    Ed25519Key bytes = {};

    auto operator<=>(const SshPublicKey&) const = default;

    /// SSH's binary form. @throws DataError for any other
    std::string Blob() const;
    static SshPublicKey OfBlob(std::string_view blob);
    /// As in a file with the ending .pub: "ssh-ed25519 AAAA...", without a comment. @throws DataError for any other
    std::string Text() const;
    static SshPublicKey OfText(std::string_view text);
    std::string Fingerprint() const { return SshFingerprint(Blob()); }
};

struct SshPrivateKey {
    SshPublicKey publicKey;
    Ed25519PrivateKey key;
};

/// Reads a private key in OpenSSH's own file format (openssh-key-v1), one key without a passphrase.
/// @throws DataError for any other
SshPrivateKey ReadPrivateKey(std::string_view file);

/// The text of such a file.
/// @param seed 32 bytes, the private key as RFC 8032 has it
/// @throws DataError when the system has no random numbers
SecretBytes PrivateKeyText(std::span<const std::byte> seed, std::string_view comment);

}  // namespace qel
