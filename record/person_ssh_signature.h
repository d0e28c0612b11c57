#pragma once

#include <string>
#include <string_view>

#include "qellib10/record/person_public_key.h"
#include "qellib10/record/person_signer.h"

// Signatures of people, in the same envelope as those of the installation (ssh_signature.h).
namespace qel {

/// The signature in SSH's binary form, as an agent returns it.
std::string SignatureBlob(const PersonPublicKey& key, const PersonSignature& signature);
/// @throws DataError for any other form, another kind than the key's, and a security key that has not verified its user
PersonSignature ReadSignatureBlob(const PersonPublicKey& key, std::string_view blob);

/// Whether the key has signed these bytes. One in a security key has to have verified its user.
bool IsSignedBy(const PersonPublicKey& key, std::string_view bytes, const PersonSignature& signature);

struct PersonSshSignature {
    PersonPublicKey key;
    PersonSignature signature = {};

    /// SSH's binary form, as it is in Base64 between the lines of an armoured file.
    std::string Blob(std::string_view nameSpace) const;
    /// @throws DataError for any other form, another namespace or hash, and as ReadSignatureBlob
    static PersonSshSignature OfBlob(std::string_view blob, std::string_view nameSpace);
};

bool IsSignatureOf(const PersonSshSignature& signature, std::string_view nameSpace, std::string_view message);

}  // namespace qel
