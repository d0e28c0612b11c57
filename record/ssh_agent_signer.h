#pragma once

#include <chrono>
#include <memory>

#include "qellib10/record/signer.h"

namespace qel {

/// Signs through an agent that speaks the protocol of ssh-agent. Its process can belong to another user: the
/// application gets signatures and never the key.
///
/// @code
/// auto signer = std::make_shared<qel::SshAgentSigner>(std::chrono::seconds(2));
/// if (signer->Connect(R"(\run\titrator\agent)", "SHA256:4xRlrmPxDSDFtdmTqb21GcYSUsCZ1BVtHIi7RGuTDIU") == 0) return;
/// @endcode
class QELLIB10_API SshAgentSigner : public Signer {
public:
    /// @param limit of each question to the agent; without an answer by then it fails
    explicit SshAgentSigner(std::chrono::milliseconds limit = std::chrono::seconds(5));
    ~SshAgentSigner() override;

    /// Finds the key with @p fingerprint, as ssh-keygen -l shows it, among those of the agent; an empty one finds the
    /// only key of the kind ssh-ed25519.
    /// @param socketPath in the library's form, such as qel::ToLibraryPath(getenv("SSH_AUTH_SOCK"))
    /// @return 1, or 0 and the signer has no key
    int Connect(std::string_view socketPath, std::string_view fingerprint = {});

    std::string PublicKey() const override;
    bool ChecksSignatures() const override;
    std::array<std::byte, 64> Sign(std::string_view bytes) override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
