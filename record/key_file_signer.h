#pragma once

#include <memory>

#include "qellib10/record/signer.h"

namespace qel {

/// Signs by a private key in a file as ssh-keygen -t ed25519 -N '' makes it, and Make. Programs of the same user can
/// read the key: outside of tests and demonstrations use an SshAgentSigner, whose agent runs as a user of its own.
///
/// @code
/// auto signer = std::make_shared<qel::KeyFileSigner>();
/// if (signer->Load(R"(\etc\titrator\trail_key)") == 0) return;
/// @endcode
class QELLIB10_API KeyFileSigner : public Signer {
public:
    KeyFileSigner();
    ~KeyFileSigner() override;

    /// Makes a new key in a file that must not exist yet, with mode 0600, and loads it. `ssh-keygen -y -f FILE` writes
    /// its public key for a file of allowed signers.
    /// @param path in the library's form
    /// @param comment for people, such as the installation's name; at most 256 bytes of UTF-8 without control
    /// characters or blanks at its ends, may be empty
    /// @return 1, or 0 and the signer has no key
    int Make(std::string_view path, std::string_view comment);
    /// @param path in the library's form. The file must be this user's and have mode 0600: a key that others could read
    /// proves nothing.
    /// @return 1, or 0 and the signer has no key
    int Load(std::string_view path);

    std::string PublicKey() const override;
    bool ChecksSignatures() const override;
    std::array<std::byte, 64> Sign(std::string_view bytes) override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
