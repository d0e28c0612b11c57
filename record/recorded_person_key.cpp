#include "qellib10/record/recorded_person_key.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/private_file.h"
#include "qellib10/platform/text/utf8_name.h"
#include "qellib10/record/next_person_key.h"
#include "qellib10/record/person_key_file.h"
#include "qellib10/record/person_signer.h"
#include "qellib10/record/refusals.h"
#include "qellib10/record/signature_log.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_backwards.h"
#include "qellib10/record/trail_writer.h"

namespace qel {
namespace {

struct Gift {
    std::string_view user, by, reason;
};

void RequireGift(const Gift& gift) {
    for (const std::string_view text : {gift.user, gift.by, gift.reason}) {
        if (!IsShown(text, PersonKeyFile::kLongestName))
            throw DataError("a person's key needs a user, who gives it, and why: 1 to 256 bytes that can be shown");
    }
}

// What the entry "person key changing" has in `after`.
std::string KeyAndName(const PersonKeyFile& file) { return file.key.Text() + ' ' + file.name; }

}  // namespace

struct RecordedPersonKey::State {
    State(TrailWriter& writer, std::string_view keyPath)
        : trail(writer), path(keyPath), log(writer.Path(), SigningRules()) {}

    void Make(const Gift& gift, std::string_view name, std::string_view password);
    void Reset(const Gift& gift, std::string_view name, std::string_view password);
    void End(const Gift& gift);
    int ChangePassword(std::string_view user, std::string_view oldPassword, std::string_view newPassword);

    void CatchUp();
    void Enter(const TrailRecord& record);
    void EnterChanging(const Gift& gift, const std::string& newKey);
    void Settle(NextPersonKey& next);
    std::optional<std::string> ReasonFor(const PersonKeyFile& left) const;
    void Give(NextPersonKey& next, const PersonKeyFile& key, const Gift& gift);
    void Finish(NextPersonKey& next, const PersonKeyFile& key, std::string_view reason);
    void EndKeys(const std::string& user, std::string_view reason);
    std::string WhyRefused(const PersonKeyFile& file, std::string_view user) const;

    TrailWriter& trail;
    const std::string path;
    SignatureLog log;
    Refusals refusals = {};
};

void RecordedPersonKey::State::CatchUp() {
    trail.Refresh();
    log.CatchUp(trail.Last());
}

void RecordedPersonKey::State::Enter(const TrailRecord& record) {
    trail.Append(record);
    trail.Flush();
}

void RecordedPersonKey::State::EnterChanging(const Gift& gift, const std::string& newKey) {
    const std::vector<PersonPublicKey> old = log.State().ValidKeysOf(gift.user);
    Enter({.user = std::string(gift.by),
           .action = std::string(trail_kind::kPersonKeyChanging),
           .object = std::string(gift.user),
           .before = old.empty() ? "" : old.front().Text(),
           .after = newKey,
           .reason = std::string(gift.reason)});
}

// The trail decides: the file alone could have been put there by anybody.
void RecordedPersonKey::State::Settle(NextPersonKey& next) {
    const std::optional<PersonKeyFile> left = next.Left();
    if (!left) return next.Forget();
    CatchUp();
    if (!log.State().IsKnown(left->key)) {
        const std::optional<std::string> reason = ReasonFor(*left);
        reason ? Finish(next, *left, *reason) : next.Forget();
    } else {
        log.State().IsValidKeyOf(left->key, left->user) ? Finish(next, *left, "interrupted") : next.Forget();
    }
}

// Only the last change of the person's key can be waiting for its end.
std::optional<std::string> RecordedPersonKey::State::ReasonFor(const PersonKeyFile& left) const {
    TrailBackwards entries(trail.Path(), trail.Last());
    while (const std::optional<TrailEntry> entry = entries.Next()) {
        if (entry->action != trail_kind::kPersonKeyChanging || entry->object != left.user) continue;
        const bool isThis = entry->after == KeyAndName(left) || entry->after == left.key.Text();  // an older program's
        return isThis ? std::optional(entry->reason) : std::nullopt;
    }
    return std::nullopt;
}

void RecordedPersonKey::State::Give(NextPersonKey& next, const PersonKeyFile& key, const Gift& gift) {
    next.Keep(key);
    EnterChanging(gift, KeyAndName(key));
    Finish(next, key, gift.reason);
}

// Each step may have been done before.
void RecordedPersonKey::State::Finish(NextPersonKey& next, const PersonKeyFile& key, std::string_view reason) {
    CatchUp();
    if (!log.State().IsKnown(key.key)) {
        EndKeys(key.user, reason);
        Enter({.user = key.user,
               .action = std::string(trail_kind::kPersonKeyAdded),
               .object = key.key.Text(),
               .after = key.name,
               .reason = std::string(reason)});
    }
    WritePrivateFile(ToPosixPath(path), key.Text());  // not with the rights of a file that others may read
    next.Forget();
    CatchUp();
}

void RecordedPersonKey::State::EndKeys(const std::string& user, std::string_view reason) {
    for (const PersonPublicKey& key : log.State().ValidKeysOf(user))
        Enter({.user = user,
               .action = std::string(trail_kind::kPersonKeyEnded),
               .object = key.Text(),
               .reason = std::string(reason)});
}

void RecordedPersonKey::State::Make(const Gift& gift, std::string_view name, std::string_view password) {
    RequireGift(gift);
    CatchUp();
    NextPersonKey next(path);
    Settle(next);
    if (IsPersonKeyFileThere(path)) throw DataError("the file of a person's key exists already");
    if (!log.State().ValidKeysOf(gift.user).empty()) throw DataError("the user has a key already: reset it");
    Give(next, NewPersonKeyFile(gift.user, name, password), gift);
}

void RecordedPersonKey::State::Reset(const Gift& gift, std::string_view name, std::string_view password) {
    RequireGift(gift);
    CatchUp();
    NextPersonKey next(path);
    Settle(next);
    if (!log.State().IsPerson(gift.user)) throw DataError("no key was announced for this user");
    const std::optional<PersonKeyFile> present = ReadPersonKeyFileIfWhole(path);  // a damaged one is lost
    if (present && present->user != gift.user) throw DataError("the file has another person's key");
    Give(next, NewPersonKeyFile(gift.user, name, password), gift);
}

void RecordedPersonKey::State::End(const Gift& gift) {
    RequireGift(gift);
    CatchUp();
    NextPersonKey next(path);
    Settle(next);
    if (log.State().ValidKeysOf(gift.user).empty()) throw DataError("the user has no key");
    EnterChanging(gift, "");
    CatchUp();
    EndKeys(std::string(gift.user), gift.reason);
}

std::string RecordedPersonKey::State::WhyRefused(const PersonKeyFile& file, std::string_view user) const {
    if (!SameUtf8Name(user, file.user)) return "the name is not that of the key";
    return log.State().IsValidKeyOf(file.key, user) ? "" : "the key was not announced for this user, or has ended";
}

int RecordedPersonKey::State::ChangePassword(std::string_view user, std::string_view oldPassword,
                                             std::string_view newPassword) {
    if (refusals.HaveEnded()) return Refuse(FailureKind::kState, "", "three refusals have ended it");
    PersonKeyFile::RequireUsable(newPassword);
    CatchUp();
    NextPersonKey next(path);
    Settle(next);
    PersonKeyFile file = ReadPersonKeyFile(path);
    const TrailRecord record{.object = "password of " + file.key.Fingerprint()};
    const std::string why = WhyRefused(file, user);
    if (!why.empty()) return refusals.Add(trail, log.State(), record, user, why);
    const std::optional<SecretBytes> seed = file.Open(oldPassword);
    if (!seed) return refusals.Add(trail, log.State(), record, user, WrongPassword().what());
    Replacement changed(path, kPersonKeyMode);
    file.Close(*seed, newPassword);
    WriteTo(changed, file, path);
    Enter({.user = file.user,
           .action = std::string(trail_kind::kPasswordChanged),
           .object = file.key.Text(),
           .reason = "by its user"});
    changed.Commit();
    return 1;
}

RecordedPersonKey::RecordedPersonKey(Trail& trail, std::string_view path) : m_state(new State(WriterOf(trail), path)) {}
RecordedPersonKey::~RecordedPersonKey() = default;

bool RecordedPersonKey::HasEnded() const noexcept { return m_state->refusals.HaveEnded(); }

int RecordedPersonKey::Make(std::string_view user, std::string_view printedName, std::string_view password,
                            std::string_view by, std::string_view reason) {
    return Succeeds("RecordedPersonKey::Make",
                    [&] {
                        m_state->Make({user, by, reason}, printedName, password);
                    })
               ? 1
               : 0;
}

int RecordedPersonKey::Reset(std::string_view user, std::string_view printedName, std::string_view password,
                             std::string_view by, std::string_view reason) {
    return Succeeds("RecordedPersonKey::Reset",
                    [&] {
                        m_state->Reset({user, by, reason}, printedName, password);
                    })
               ? 1
               : 0;
}

int RecordedPersonKey::End(std::string_view user, std::string_view by, std::string_view reason) {
    return Succeeds("RecordedPersonKey::End", [&] { m_state->End({user, by, reason}); }) ? 1 : 0;
}

int RecordedPersonKey::ChangePassword(std::string_view user, std::string_view oldPassword,
                                      std::string_view newPassword) {
    return AsResult("RecordedPersonKey::ChangePassword",
                    [&] { return m_state->ChangePassword(user, oldPassword, newPassword); });
}

}  // namespace qel
