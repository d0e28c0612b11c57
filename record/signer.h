#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// Signs the entries of a trail by a key that the trail never sees. An application may have its own, such as for a key
/// in a security module. One thread at a time; a trail has its own turn for it.
class QELLIB10_API Signer {
public:
    virtual ~Signer();

    /// The public key: "ssh-ed25519 AAAA...", as in a file with the ending .pub, without a comment. Empty while there
    /// is none.
    virtual std::string PublicKey() const = 0;
    /// Whether Sign never returns a wrong signature. A trail checks the signatures of all other signers, which takes
    /// about twice as long as signing does: nobody can append after an entry with a wrong one. The default is false.
    virtual bool ChecksSignatures() const;
    /// The Ed25519 signature of @p bytes.
    /// @throws CFileException, qel::DataError when it cannot be made
    virtual std::array<std::byte, 64> Sign(std::string_view bytes) = 0;
};

}  // namespace qel
