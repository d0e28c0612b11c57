#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/record/person_signer.h"
#include "qellib10/record/signing_rules.h"
#include "qellib10/record/trail.h"

namespace qel {

/// What is to be signed: as in PersonStatement, whose other members qel::Signing adds.
struct QELLIB10_API SigningRequest {
    std::string cabinet = {};
    std::uint64_t cabinetVersion = 0;
    std::uint64_t size = 0;
    std::string sha256 = {};
    std::string reportSha256 = {};
    std::string meaning = {};
};

/// A person signs: from the name and the password that somebody types, over the rules, to the entry in the trail. Each
/// signature needs the password, so an open session alone signs nothing. Without this class an application could check
/// the password first and write the name that it likes.
///
/// @code
/// qel::TrailSettings settings;
/// std::shared_ptr<qel::Signer> installation;
/// std::string user, password;  // as somebody has typed them
///
/// qel::Trail trail(settings, installation);
/// auto person = std::make_shared<qel::PersonKey>();
/// if (trail.Open() == 0 || person->Open(R"(\srv\keys\mori)") == 0) return;
/// qel::Signing signing(trail, person, {.approvals = 2});
/// qel::SigningRequest request;  // its cabinet, version and hash as they were registered
/// request.meaning = qel::signature_meaning::kApproved;
/// if (!signing.Sign(request, user, password)) std::puts(qel::LastFailure().text.c_str());
/// @endcode
///
/// Operations return 1 or a value, or 0 or nothing; qel::LastFailure has the reason. Its kind is kRefused where the
/// person or the rules are the reason. Each refusal becomes an entry trail_kind::kSignatureRefused, and the third one
/// ends the session. What was typed is never written; the entry has a user only if a key was announced for that user.
/// A session is that of one key: when the signer has another one after the first signature, as when a qel::PersonKey
/// opens another file, this is refused and ends the session at once.
///
/// The key of the person must have been announced by an entry trail_kind::kPersonKeyAdded. The first operation reads
/// the whole trail, later ones only what is new. Nothing is locked while a password is checked. If another program was
/// quicker meanwhile, so that the rules do not allow the signature any more, its entry is there but counts for nothing,
/// and the operation fails. After a failure of the trail's files the entry may be there and count: ask MayBeFinal. One
/// thread at a time; the trail may be in use elsewhere, and must live as long as this object.
class QELLIB10_API Signing {
public:
    Signing(Trail& trail, std::shared_ptr<PersonSigner> person, SigningRules rules);
    ~Signing();
    Signing(const Signing&) = delete;
    Signing& operator=(const Signing&) = delete;

    /// The first signature of a session.
    /// @param user as somebody has typed it
    /// @return where the entry is, which is acknowledged then
    std::optional<TrailReceipt> Sign(const SigningRequest& request, std::string_view user, std::string_view password);
    /// A later one.
    std::optional<TrailReceipt> Sign(const SigningRequest& request, std::string_view password);
    /// Whether three refusals, or another key, have ended the session.
    bool HasEnded() const noexcept;

    /// Whether a version has the approvals that the rules ask for, is not rejected and was not changed since. It also
    /// counts what other people have signed.
    /// @return 0 also when that cannot be found out
    int MayBeFinal(std::string_view cabinet, std::uint64_t cabinetVersion);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
