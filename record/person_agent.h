#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "qellib10/record/person_signer.h"

namespace qel {

/// Whether this is the password of this user's account: asked at each signature. It may ask a store of users or the
/// system (qel::PamAuthenticator). Where it says no by a failure of the library, qel::LastFailure has its reason. Only
/// one of the kind kRefused, or none, is a wrong password, which counts.
using Authenticator = std::function<bool(std::string_view user, std::string_view password)>;

/// A person who signs by a key in an agent that speaks the protocol of ssh-agent, such as one on a card. The agent
/// signs for whoever can reach it, so the person's password is checked first, each time: else somebody else could sign
/// at a screen that the person has left.
///
/// @code
/// const auto isPasswordOf = [](std::string_view user, std::string_view password) {
///     return user == "mori" && password == "as the application knows it";
/// };
/// qel::PersonAgent person(isPasswordOf);
/// const char* const key = "SHA256:4xRlrmPxDSDFtdmTqb21GcYSUsCZ1BVtHIi7RGuTDIU";
/// if (person.Connect(R"(\run\user\1000\agent)", key, "mori", "Mori Akiko") == 0) return;
/// @endcode
///
/// The password only guards the agent within this program: whoever has the agent's socket can sign without it. A key of
/// qel::PersonKey is guarded by its password itself.
class QELLIB10_API PersonAgent : public PersonSigner {
public:
    /// @param limit of each question to the agent, which may wait for the person to touch a security key
    explicit PersonAgent(Authenticator authenticator, std::chrono::milliseconds limit = std::chrono::minutes(1));
    ~PersonAgent() override;

    /// Finds the person's key among those of the agent: of the kind ssh-ed25519, ecdsa-sha2-nistp256, or
    /// sk-ssh-ed25519@openssh.com made with `-O verify-required`.
    /// @param socketPath in the library's form
    /// @param fingerprint as ssh-keygen -l shows it; must be there, since the key has to be this person's
    /// @param user, printedName as for PersonKey::Make
    /// @return 1, or 0 and there is no key; qel::LastFailure has the reason
    int Connect(std::string_view socketPath, std::string_view fingerprint, std::string_view user,
                std::string_view printedName);

    std::string User() const override;
    std::string PrintedName() const override;
    std::string PublicKey() const override;
    /// @throws WrongPassword if the authenticator says no, before the agent is asked; DataError also without one, where
    /// it cannot check the password, and if a security key has not verified its user
    PersonSignature Sign(std::string_view bytes, std::string_view password) override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
