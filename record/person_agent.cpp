#include "qellib10/record/person_agent.h"

#include <algorithm>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/record/person_key_format.h"
#include "qellib10/record/person_ssh_signature.h"
#include "qellib10/record/ssh_agent.h"
#include "qellib10/record/text_forms.h"

namespace qel {

namespace {

// Its own reason, where it has one: a password may be right and have expired. Where the system could not check it,
// nobody has guessed.
void RequirePassword(const Authenticator& isPasswordOf, std::string_view user, std::string_view password) {
    Operation asking(nullptr);
    if (isPasswordOf(user, password)) return;
    asking.Ended(0, FailureKind::kRefused, WrongPassword().what());
    const Failure why = LastFailure();
    if (why.kind == FailureKind::kRefused) throw WrongPassword(ToUtf8(why.text));
    throw DataError("the password cannot be checked: " + ToUtf8(why.text));
}

}  // namespace

struct PersonAgent::State {
    Authenticator isPasswordOf;
    SshAgent agent;
    std::string user = {}, name = {};
    PersonPublicKey key = {};  // counts with a user alone
};

PersonAgent::PersonAgent(Authenticator authenticator, std::chrono::milliseconds limit)
    : m_state(new State{std::move(authenticator), SshAgent(limit)}) {}
PersonAgent::~PersonAgent() = default;

int PersonAgent::Connect(std::string_view socketPath, std::string_view fingerprint, std::string_view user,
                         std::string_view printedName) {
    m_state->user.clear();
    m_state->name.clear();
    return AsResult("PersonAgent::Connect", [&] {
        if (!IsShown(user, PersonKeyFile::kLongestName) || !IsShown(printedName, PersonKeyFile::kLongestName))
            throw DataError("a person needs names of 1 to 256 bytes that can be shown");
        if (fingerprint.empty()) throw DataError("the person's key has to be named by its fingerprint");
        m_state->agent.Use(socketPath);
        const std::vector<std::string> keys = m_state->agent.Keys();
        const auto found = std::ranges::find(keys, fingerprint, SshFingerprint);
        if (found == keys.end()) return Refuse(FailureKind::kMissing, socketPath, "the agent does not have this key");
        m_state->key = PersonPublicKey::OfBlob(*found);
        m_state->user = user;
        m_state->name = printedName;
        return 1;
    });
}

std::string PersonAgent::User() const { return m_state->user; }
std::string PersonAgent::PrintedName() const { return m_state->name; }
std::string PersonAgent::PublicKey() const { return m_state->user.empty() ? "" : m_state->key.Text(); }

PersonSignature PersonAgent::Sign(std::string_view bytes, std::string_view password) {
    if (m_state->user.empty()) throw DataError("no agent was connected");
    if (!m_state->isPasswordOf) throw DataError("nobody can check the password");
    RequirePassword(m_state->isPasswordOf, m_state->user, password);
    const PersonPublicKey& key = m_state->key;
    const PersonSignature made = ReadSignatureBlob(key, m_state->agent.Sign(key.Blob(), bytes));
    if (!IsSignedBy(key, bytes, made)) throw DataError("the agent's signature is wrong");
    return made;
}

}  // namespace qel
