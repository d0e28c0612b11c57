#include "qellib10/record/signing.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/utf8_name.h"
#include "qellib10/record/person_statement_text.h"
#include "qellib10/record/refusals.h"
#include "qellib10/record/signature_log.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_clock.h"
#include "qellib10/record/trail_writer.h"

namespace qel {
namespace {

TrailRecord RecordOf(std::string_view action, const PersonStatement& statement, std::string_view user) {
    TrailRecord record;
    record.user = user;
    record.action = action;
    record.cabinet = statement.cabinet;
    record.cabinetVersion = statement.cabinetVersion;
    record.size = statement.size;
    record.sha256 = statement.sha256;
    return record;
}

}  // namespace

struct Signing::State {
    Trail& trail;
    std::shared_ptr<PersonSigner> person;
    SignatureLog log;
    Refusals refusals = {};
    std::string key = {};  // of who has signed first; empty: nobody has

    int Sign(const SigningRequest& request, std::optional<std::string_view> user, std::string_view password,
             std::optional<TrailReceipt>& receipt);
    int RefuseState(bool hasName) const;
    PersonStatement StatementOf(const SigningRequest& request) const;
    std::string WhyRefused(const PersonStatement& statement, std::optional<std::string_view> user) const;
    int RefuseSigning(const PersonStatement& statement, std::string_view typed, const std::string& reason);
    int Append(const PersonStatement& statement, std::string_view text, std::optional<TrailReceipt>& receipt);
    void CatchUp();
};

Signing::Signing(Trail& trail, std::shared_ptr<PersonSigner> person, SigningRules rules)
    : m_state(new State{trail, std::move(person), SignatureLog(WriterOf(trail).Path(), std::move(rules))}) {}
Signing::~Signing() = default;

bool Signing::HasEnded() const noexcept { return m_state->refusals.HaveEnded(); }

std::optional<TrailReceipt> Signing::Sign(const SigningRequest& request, std::string_view user,
                                          std::string_view password) {
    std::optional<TrailReceipt> receipt;
    const bool isDone = AsResult("Signing::Sign", [&] { return m_state->Sign(request, user, password, receipt); }) != 0;
    return isDone ? receipt : std::nullopt;
}

std::optional<TrailReceipt> Signing::Sign(const SigningRequest& request, std::string_view password) {
    std::optional<TrailReceipt> receipt;
    const bool isDone =
        AsResult("Signing::Sign", [&] { return m_state->Sign(request, std::nullopt, password, receipt); }) != 0;
    return isDone ? receipt : std::nullopt;
}

int Signing::MayBeFinal(std::string_view cabinet, std::uint64_t cabinetVersion) {
    return AsResult("Signing::MayBeFinal", [&] {
        m_state->CatchUp();
        const std::string why = m_state->log.State().WhyNotFinal(std::string(cabinet), cabinetVersion);
        return why.empty() ? 1 : Refuse(FailureKind::kRefused, cabinet, why);
    });
}

void Signing::State::CatchUp() {
    TrailWriter& writer = WriterOf(trail);
    writer.Refresh();  // what other programs have had acknowledged counts, and nothing after that
    log.CatchUp(writer.Last());
}

// All that can be found wrong without the password is, so that it does not show whether the password was right.
int Signing::State::Sign(const SigningRequest& request, std::optional<std::string_view> user, std::string_view password,
                         std::optional<TrailReceipt>& receipt) {
    if (RefuseState(user.has_value()) == 0) return 0;
    CatchUp();
    const PersonStatement statement = StatementOf(request);
    if (statement.time < log.Time() - kMostApart)  // the entry would have another time, as the trail's never go back
        return Refuse(FailureKind::kState, "", "the clock is set to before the trail's last entry");
    const std::string part = SignedPart(statement);
    const std::string_view typed = user.value_or(statement.user);
    if (!key.empty() && key != person->PublicKey()) {
        refusals.End();
        return RefuseSigning(statement, "", "the key is not the one that the session began with");
    }
    const std::string why = WhyRefused(statement, user);
    if (!why.empty()) return RefuseSigning(statement, typed, why);
    PersonSshSignature signature{.key = PersonPublicKey::OfText(person->PublicKey())};
    try {
        signature.signature = person->Sign(BytesToSign(kStatementNamespace, part), password);
    } catch (const WrongPassword& wrong) {
        return RefuseSigning(statement, typed, wrong.what());
    }
    if (!IsSignatureOf(signature, kStatementNamespace, part))
        throw DataError("the person's key has made a signature that is not right");
    return Append(statement, StatementText(part, signature), receipt);
}

int Signing::State::RefuseState(bool hasName) const {
    if (refusals.HaveEnded()) return Refuse(FailureKind::kState, "", "refusals have ended the session");
    if (person == nullptr || person->PublicKey().empty())
        return Refuse(FailureKind::kState, "", "no person's key is open");
    if (!hasName && key.empty())
        return Refuse(FailureKind::kState, "", "the first signature of a session needs the user's name");
    return 1;
}

PersonStatement Signing::State::StatementOf(const SigningRequest& request) const {
    return {.trailId = log.TrailId(),
            .nonce = RandomId(),
            .cabinet = request.cabinet,
            .cabinetVersion = request.cabinetVersion,
            .size = request.size,
            .sha256 = request.sha256,
            .reportSha256 = request.reportSha256,
            .meaning = request.meaning,
            .name = person->PrintedName(),
            .user = person->User(),
            .time = SystemMoment().time};
}

std::string Signing::State::WhyRefused(const PersonStatement& statement, std::optional<std::string_view> user) const {
    if (user && !SameUtf8Name(*user, statement.user)) return "the name is not that of the key";
    const auto problems =
        log.State().ProblemsOf(statement, PersonPublicKey::OfText(person->PublicKey()), statement.time);
    return problems.empty() ? "" : problems.front().text;
}

int Signing::State::RefuseSigning(const PersonStatement& statement, std::string_view typed, const std::string& reason) {
    return refusals.Add(WriterOf(trail), log.State(), RecordOf("", statement, ""), typed, reason);
}

int Signing::State::Append(const PersonStatement& statement, std::string_view text,
                           std::optional<TrailReceipt>& receipt) {
    TrailRecord record = RecordOf(trail_kind::kSignature, statement, statement.user);
    record.statement = text;
    receipt = trail.Append(record);
    if (!receipt || trail.Flush() == 0) return 0;
    const auto problems = log.CatchUp(*receipt);
    if (!problems.empty())
        return Refuse(FailureKind::kRefused, "", "another program was quicker: " + problems.front().text);
    key = person->PublicKey();
    return 1;
}

}  // namespace qel
