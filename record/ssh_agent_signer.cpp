#include "qellib10/record/ssh_agent_signer.h"

#include <optional>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/crypto/agent_socket.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/record/ssh_key.h"
#include "qellib10/record/ssh_wire.h"

namespace qel {
namespace {

// The messages of the agent's protocol that are used here.
enum Message : std::uint8_t {
    kFailure = 5,
    kRequestIdentities = 11,
    kIdentities = 12,
    kSignRequest = 13,
    kSignResponse = 14,
};

void ExpectMessage(SshReader& answer, Message expected) {
    const std::uint8_t message = answer.Byte();
    if (message == kFailure) throw DataError("the agent refused");
    if (message != expected) throw DataError("the agent's answer is of another kind than asked for");
}

// Keys of other kinds are passed over.
std::optional<SshPublicKey> FindKey(std::string_view bytes, std::string_view fingerprint) {
    SshReader answer(bytes);
    ExpectMessage(answer, kIdentities);
    std::optional<SshPublicKey> found;
    int matches = 0;
    for (std::uint32_t left = answer.Number(); left > 0; --left) {
        const std::string_view blob = answer.String();
        answer.String();  // a comment
        SshReader kind(blob);
        if (kind.String() != kSshKeyType) continue;
        const SshPublicKey key = SshPublicKey::OfBlob(blob);
        if (!fingerprint.empty() && key.Fingerprint() != fingerprint) continue;
        found = key;
        ++matches;
    }
    answer.ExpectEnd();
    if (fingerprint.empty() && matches > 1) throw DataError("the agent has several keys: name one by its fingerprint");
    return found;
}

}  // namespace

struct SshAgentSigner::State {
    std::chrono::milliseconds limit;
    std::string socket = {};
    std::optional<SshPublicKey> key = {};
};

SshAgentSigner::SshAgentSigner(std::chrono::milliseconds limit) : m_state(new State{limit}) {}
SshAgentSigner::~SshAgentSigner() = default;

int SshAgentSigner::Connect(std::string_view socketPath, std::string_view fingerprint) {
    m_state->key.reset();
    return AsResult("SshAgentSigner::Connect", [&] {
        m_state->socket = ToPosixPath(socketPath);
        const std::string question = SshWriter().Byte(kRequestIdentities).Bytes();
        m_state->key = FindKey(AskAgent(m_state->socket, question, m_state->limit), fingerprint);
        if (!m_state->key) Refuse(FailureKind::kMissing, socketPath, "the agent does not have this key");
        return m_state->key ? 1 : 0;
    });
}

std::string SshAgentSigner::PublicKey() const { return m_state->key ? m_state->key->Text() : ""; }

bool SshAgentSigner::ChecksSignatures() const { return true; }

std::array<std::byte, 64> SshAgentSigner::Sign(std::string_view bytes) {
    if (!m_state->key) throw DataError("no agent was connected");
    const SshWriter question = SshWriter().Byte(kSignRequest).String(m_state->key->Blob()).String(bytes).Number(0);
    const std::string answer = AskAgent(m_state->socket, question.Bytes(), m_state->limit);
    SshReader reader(answer);
    ExpectMessage(reader, kSignResponse);
    SshReader signature(reader.String());
    reader.ExpectEnd();
    std::array<std::byte, 64> made;
    signature.ExpectString(kSshKeyType);
    signature.String(made);
    signature.ExpectEnd();
    if (!IsSignedBy(m_state->key->bytes, bytes, made)) throw DataError("the agent's signature is wrong");
    return made;
}

}  // namespace qel
