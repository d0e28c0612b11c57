#include "qellib10/record/ssh_agent.h"

#include <cstdint>

#include "qellib10/platform/crypto/agent_socket.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/path.h"
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

}  // namespace

void SshAgent::Use(std::string_view socketPath) { m_socket = ToPosixPath(socketPath); }

std::vector<std::string> SshAgent::Keys() const {
    const std::string bytes = AskAgent(m_socket, SshWriter().Byte(kRequestIdentities).Bytes(), m_limit);
    SshReader answer(bytes);
    ExpectMessage(answer, kIdentities);
    std::vector<std::string> keys;
    for (std::uint32_t left = answer.Number(); left > 0; --left) {
        keys.emplace_back(answer.String());
        answer.String();  // a comment
    }
    answer.ExpectEnd();
    return keys;
}

std::string SshAgent::Sign(std::string_view key, std::string_view bytes) const {
    const SshWriter question = SshWriter().Byte(kSignRequest).String(key).String(bytes).Number(0);
    const std::string answer = AskAgent(m_socket, question.Bytes(), m_limit);
    SshReader reader(answer);
    ExpectMessage(reader, kSignResponse);
    std::string signature(reader.String());
    reader.ExpectEnd();
    return signature;
}

}  // namespace qel
