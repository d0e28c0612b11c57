#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/error.h"
#include "qellib10/platform/export.h"

namespace qel {

/// What is thrown when a password is not the one of a key, or a key file was changed on purpose.
class QELLIB10_API WrongPassword : public DataError {
public:
    WrongPassword();
    ~WrongPassword() override;
};

/// A person who signs: one key, of which each use needs the person's password. qel::PersonKey keeps it in a file; an
/// application may have another source, such as a key in a token. One thread at a time.
class QELLIB10_API PersonSigner {
public:
    virtual ~PersonSigner();

    /// The name for logging on, and the one for people to read; UTF-8. Empty while there is no key.
    virtual std::string User() const = 0;
    virtual std::string PrintedName() const = 0;
    /// The public key: "ssh-ed25519 AAAA...". Empty while there is none.
    virtual std::string PublicKey() const = 0;
    /// The Ed25519 signature of @p bytes. Nothing that could sign without the password is kept after it.
    /// @throws WrongPassword; CFileException, qel::DataError when it cannot be made for another reason
    virtual std::array<std::byte, 64> Sign(std::string_view bytes, std::string_view password) = 0;
};

}  // namespace qel
