#include "qellib10/record/person_agent.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/person_key_format.h"
#include "qellib10/record/ssh_agent_signer.h"
#include "qellib10/record/text_forms.h"

namespace qel {

struct PersonAgent::State {
    Authenticator isPasswordOf;
    SshAgentSigner agent = SshAgentSigner();
    std::string user = {}, name = {};
};

PersonAgent::PersonAgent(Authenticator authenticator) : m_state(new State{std::move(authenticator)}) {}
PersonAgent::~PersonAgent() = default;

int PersonAgent::Connect(std::string_view socketPath, std::string_view fingerprint, std::string_view user,
                         std::string_view printedName) {
    m_state->user.clear();
    m_state->name.clear();
    return AsResult("PersonAgent::Connect", [&] {
        if (!IsShown(user, PersonKeyFile::kLongestName) || !IsShown(printedName, PersonKeyFile::kLongestName))
            throw DataError("a person needs names of 1 to 256 bytes that can be shown");
        if (fingerprint.empty()) throw DataError("the person's key has to be named by its fingerprint");
        if (m_state->agent.Connect(socketPath, fingerprint) == 0) return 0;
        m_state->user = user;
        m_state->name = printedName;
        return 1;
    });
}

std::string PersonAgent::User() const { return m_state->user; }
std::string PersonAgent::PrintedName() const { return m_state->name; }
std::string PersonAgent::PublicKey() const { return m_state->user.empty() ? "" : m_state->agent.PublicKey(); }

std::array<std::byte, 64> PersonAgent::Sign(std::string_view bytes, std::string_view password) {
    if (m_state->user.empty()) throw DataError("no agent was connected");
    if (!m_state->isPasswordOf) throw DataError("nobody can check the password");
    if (!m_state->isPasswordOf(m_state->user, password)) throw WrongPassword();
    return m_state->agent.Sign(bytes);
}

}  // namespace qel
