#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/error.h"
#include "qellib10/platform/export.h"

namespace qel {

/// What is thrown when a password does not open a key: it is another one, it must not be used any more, or a key file
/// was changed on purpose.
class QELLIB10_API WrongPassword : public DataError {
public:
    WrongPassword();
    /// @param why such as that the password has expired; UTF-8
    explicit WrongPassword(const std::string& why);
    ~WrongPassword() override;
};

/// A signature by a person's key, of one of three kinds.
struct PersonSignature {
    std::array<std::byte, 64> bytes = {};  ///< of ecdsa-sha2-nistp256 r and s, 32 bytes each, the highest first; else
                                           ///< as RFC 8032 has it
    std::uint8_t flags = 0;     ///< of a security key alone: bit 0, somebody was there; bit 2, who it was is verified
    std::uint32_t counter = 0;  ///< of a security key alone

    bool operator==(const PersonSignature&) const = default;
};

/// A person who signs: one key, of which each use needs the person's password. qel::PersonKey keeps it in a file; an
/// application may have another source, such as a key in a token. One thread at a time.
class QELLIB10_API PersonSigner {
public:
    virtual ~PersonSigner();

    /// The name for logging on, and the one for people to read; UTF-8. Empty while there is no key.
    virtual std::string User() const = 0;
    virtual std::string PrintedName() const = 0;
    /// The public key as in a file with the ending .pub, without a comment: "ssh-ed25519 AAAA...", or one of the kinds
    /// ecdsa-sha2-nistp256 and sk-ssh-ed25519@openssh.com. Empty while there is none.
    virtual std::string PublicKey() const = 0;
    /// The signature of @p bytes by this key: of ecdsa-sha2-nistp256 with SHA-256; of a security key over SHA-256 of
    /// its application, flags, counter and SHA-256 of @p bytes, and refused unless both flags say that the person was
    /// verified. Nothing that could sign without the password is kept after it.
    /// @throws WrongPassword; CFileException, qel::DataError when it cannot be made for another reason
    virtual PersonSignature Sign(std::string_view bytes, std::string_view password) = 0;
};

}  // namespace qel
