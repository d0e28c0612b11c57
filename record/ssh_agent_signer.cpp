#include "qellib10/record/ssh_agent_signer.h"

#include <optional>

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/ssh_agent.h"
#include "qellib10/record/ssh_key.h"
#include "qellib10/record/ssh_wire.h"

namespace qel {
namespace {

// Keys of other kinds are passed over.
std::optional<SshPublicKey> FindKey(const std::vector<std::string>& keys, std::string_view fingerprint) {
    std::optional<SshPublicKey> found;
    int matches = 0;
    for (const std::string& blob : keys) {
        if (SshReader(blob).String() != kSshKeyType) continue;
        const SshPublicKey key = SshPublicKey::OfBlob(blob);
        if (!fingerprint.empty() && key.Fingerprint() != fingerprint) continue;
        found = key;
        ++matches;
    }
    if (fingerprint.empty() && matches > 1) throw DataError("the agent has several keys: name one by its fingerprint");
    return found;
}

}  // namespace

struct SshAgentSigner::State {
    SshAgent agent;
    std::optional<SshPublicKey> key = {};
};

SshAgentSigner::SshAgentSigner(std::chrono::milliseconds limit) : m_state(new State{SshAgent(limit)}) {}
SshAgentSigner::~SshAgentSigner() = default;

int SshAgentSigner::Connect(std::string_view socketPath, std::string_view fingerprint) {
    m_state->key.reset();
    return AsResult("SshAgentSigner::Connect", [&] {
        m_state->agent.Use(socketPath);
        m_state->key = FindKey(m_state->agent.Keys(), fingerprint);
        if (!m_state->key) Refuse(FailureKind::kMissing, socketPath, "the agent does not have this key");
        return m_state->key ? 1 : 0;
    });
}

std::string SshAgentSigner::PublicKey() const { return m_state->key ? m_state->key->Text() : ""; }

bool SshAgentSigner::ChecksSignatures() const { return true; }

std::array<std::byte, 64> SshAgentSigner::Sign(std::string_view bytes) {
    if (!m_state->key) throw DataError("no agent was connected");
    const std::string answer = m_state->agent.Sign(m_state->key->Blob(), bytes);
    SshReader signature(answer);
    std::array<std::byte, 64> made;
    signature.ExpectString(kSshKeyType);
    signature.String(made);
    signature.ExpectEnd();
    if (!IsSignedBy(m_state->key->bytes, bytes, made)) throw DataError("the agent's signature is wrong");
    return made;
}

}  // namespace qel
