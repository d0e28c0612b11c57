#pragma once

#include <compare>
#include <string>
#include <string_view>
#include <variant>

#include "qellib10/platform/crypto/ecdsa.h"
#include "qellib10/platform/crypto/ed25519.h"
#include "qellib10/record/ssh_key.h"

namespace qel {

/// A key in a device that the person touches (FIDO2). It signs for one application, such as "ssh:".
struct SecurityKey {
    Ed25519Key bytes = {};
    std::string application = {};  // 1 to 256 bytes that can be shown

    auto operator<=>(const SecurityKey&) const = default;
};

/// A person's public key, of the kind ssh-ed25519, ecdsa-sha2-nistp256 or sk-ssh-ed25519@openssh.com.
struct PersonPublicKey {
    std::variant<Ed25519Key, P256Key, SecurityKey> key = {};

    PersonPublicKey() = default;
    PersonPublicKey(const SshPublicKey& ed25519) : key(ed25519.bytes) {}
    auto operator<=>(const PersonPublicKey&) const = default;

    /// As SSH names it.
    std::string_view Kind() const;
    /// SSH's binary form. @throws DataError for any other, and for a point that is not on the curve
    std::string Blob() const;
    static PersonPublicKey OfBlob(std::string_view blob);
    /// As in a file with the ending .pub, without a comment. @throws DataError for any other
    std::string Text() const;
    static PersonPublicKey OfText(std::string_view text);
    std::string Fingerprint() const { return SshFingerprint(Blob()); }
};

}  // namespace qel
