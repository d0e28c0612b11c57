#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "qellib10/record/ssh_key.h"

// Signatures as ssh-keygen -Y sign makes them (SSHSIG), with SHA-512, not armoured: what a key signs is bound to a
// namespace, so a signature for one purpose is worth nothing for another.
namespace qel {

/// What is around a signature, whatever kind of key has made it. Key and signature are in SSH's binary forms.
struct SshEnvelope {
    std::string_view key, signature;

    std::string Blob(std::string_view nameSpace) const;
    /// @return parts of @p blob
    /// @throws DataError for any other form, another namespace or hash
    static SshEnvelope OfBlob(std::string_view blob, std::string_view nameSpace);
};

/// A signature of the installation.
struct SshSignature {
    SshPublicKey key;
    Ed25519Signature bytes = {};

    /// SSH's binary form, as it is in Base64 between the lines of an armoured file.
    std::string Blob(std::string_view nameSpace) const;
    /// @throws DataError for any other form, another namespace, kind of key or hash
    static SshSignature OfBlob(std::string_view blob, std::string_view nameSpace);
};

/// The bytes that the key itself signs for @p message.
std::string BytesToSign(std::string_view nameSpace, std::string_view message);

bool IsSignatureOf(const SshSignature& signature, std::string_view nameSpace, std::string_view message);

}  // namespace qel
