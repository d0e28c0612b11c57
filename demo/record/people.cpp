#include "demo/record/people.h"

#include "demo/result/run_log.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

namespace meaning = qel::signature_meaning;

Function FunctionOf(std::string_view meaning) { return meaning == meaning::kApproved ? kApprove : kReview; }

Function FunctionOfRole(const std::string& role) {
    if (role == "reviewer") return kReview;
    if (role == "approver") return kApprove;
    throw Failure("\"" + role + "\" is neither reviewer nor approver");
}

}  // namespace

qel::SigningRules RulesOf(qel::UserStore& store) {
    qel::SigningRules rules;
    rules.approvalNeedsReview = true;
    rules.mayGive = [&store](std::string_view user, std::string_view meaning, std::int64_t) {
        CUserInfo account;
        const bool isUser = store.GetUserInfo(CString(user), &account) != 0;
        return isUser && account.GetFunctionSecurity(FunctionOf(meaning)) > 0;
    };
    return rules;
}

std::string AddUser(const NewUser& user, Session& session, ArchiveTrail& trail, const Installation& installation) {
    if (!session.IsManager()) throw Failure(session.Operator() + " may not add users");
    const Function function = FunctionOfRole(user.role);
    const std::string path = installation.PersonKeyPath(user.name);
    qel::PersonKey key;
    if (key.Make(path, user.name, user.fullName, user.password) == 0) throw Failure(path + ": " + Why("is not made"));
    trail.Enter({.action = std::string(qel::trail_kind::kRightsChanged),
                 .object = user.name,
                 .after = user.role,
                 .reason = "a new account"});
    session.Add(user.name, user.fullName, user.password, function);
    trail.SetUser(user.name);
    const qel::TrailReceipt entry = trail.Enter(qel::trail_kind::kPersonKeyAdded, key.PublicKey());
    trail.SetUser(session.Operator());
    Log("added user " + user.name);
    return "Added      " + user.name + ", " + user.fullName + ", a " + user.role + "\n" + kIndent + "key " +
           key.Fingerprint() + ", entry " + std::to_string(entry.number) + "\n";
}

std::string Sign(const std::string& meaning, DWORD version, const std::string& password, Session& session,
                 History& history, ArchiveTrail& trail, const Installation& installation, const MadeFiles& made) {
    const qel::RecordedVersion recorded = history.Recorded(version);
    if (recorded.IsFinding()) throw Failure("version " + std::to_string(version) + " is not what was registered");
    auto key = std::make_shared<qel::PersonKey>();
    const std::string path = installation.PersonKeyPath(session.Operator());
    if (key->Open(path) == 0) throw Failure(path + ": " + Why("cannot be opened"));
    const std::optional<qel::FileHash> report = qel::HashFile(made.Path(JobName(version)));
    if (!report) throw Failure(JobName(version) + ": " + Why("cannot be read"));
    qel::Signing signing(trail.Trail(), key, RulesOf(session.Store()));
    const auto receipt = signing.Sign({.cabinet = history.Guid(),
                                       .cabinetVersion = version,
                                       .size = recorded.size,
                                       .sha256 = recorded.sha256,
                                       .reportSha256 = report->sha256,
                                       .meaning = meaning},
                                      session.Operator(), password);
    if (!receipt) throw Failure("not signed: " + qel::LastFailure().text);
    Log("signed version " + std::to_string(version) + " as " + meaning);
    return "Signed     version " + std::to_string(version) + " as " + meaning + " by " + key->PrintedName() +
           ", entry " + std::to_string(receipt->number) + "\n";
}

}  // namespace titration
