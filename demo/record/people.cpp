#include "demo/record/people.h"

#include "demo/result/run_log.h"
#include "demo/support/file_names.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

namespace meaning = qel::signature_meaning;

constexpr std::size_t kLongestName = 64;  // of the store

Function FunctionOf(std::string_view meaning) { return meaning == meaning::kApproved ? kApprove : kReview; }

// Another text could look like another meaning, or like a whole line of the report.
void RequireMeaning(const std::string& meaning) {
    if (meaning != meaning::kReviewed && meaning != meaning::kApproved && meaning != meaning::kRejected)
        throw Failure("\"" + meaning + "\" is not reviewed, approved or rejected");
}

Function FunctionOfRole(const std::string& role) {
    if (role == "reviewer") return kReview;
    if (role == "approver") return kApprove;
    throw Failure("\"" + role + "\" is neither reviewer nor approver");
}

// A key without an account is of a run that was interrupted: another one takes its place.
void MakeKey(const std::string& path, const NewUser& user, const std::string& by, ArchiveTrail& trail) {
    qel::RecordedPersonKey key(trail.Trail(), path);
    const auto isThere = [&] { return CQFile::IsExist(path.c_str()) != 0; };
    int isMade = isThere() ? 0 : key.Make(user.name, user.fullName, user.password, by, "a new account");
    // Make finishes what an interrupted one has left, and then there is a key.
    if (isMade == 0 && isThere())
        isMade = key.Reset(user.name, user.fullName, user.password, by, "adding the user was interrupted");
    if (isMade == 0) throw Failure(path + ": " + Why("is not made"));
}

std::shared_ptr<qel::PersonKey> OpenKey(const std::string& path) {
    auto key = std::make_shared<qel::PersonKey>();
    if (key->Open(path) == 0) throw Failure(path + ": " + Why("cannot be opened"));
    return key;
}

}  // namespace

qel::SigningRules RulesOf(qel::UserStore& store) {
    qel::SigningRules rules;
    rules.approvalNeedsReview = true;
    rules.authorMayReview = false;
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
    CUserInfo account;
    if (user.name.size() > kLongestName || session.Store().GetUserInfo(user.name.c_str(), &account) != 0)
        throw Failure("\"" + user.name + "\" is a user already, or longer than 64 letters");
    const std::string path = installation.PersonKeyPath(user.name);
    MakeKey(path, user, session.Operator(), trail);
    session.Add(user.name, user.fullName, user.password, function);  // last: until then it can be done again
    Log("added user " + user.name);
    return "Added      " + user.name + ", " + user.fullName + ", a " + user.role + "\n" + kIndent + "key " +
           OpenKey(path)->Fingerprint() + "\n";
}

std::string Sign(const std::string& meaning, DWORD version, const std::string& password, Session& session,
                 History& history, ArchiveTrail& trail, const Installation& installation, const MadeFiles& made) {
    RequireMeaning(meaning);
    const qel::RecordedVersion recorded = history.Recorded(version);
    About(JobName(version), [&] { made.RequireAsMade(JobName(version)); });
    if (recorded.IsFinding())
        throw Failure("version " + std::to_string(version) + ": " + std::string(qel::StateText(recorded.state)));
    const std::shared_ptr<qel::PersonKey> key = OpenKey(installation.PersonKeyPath(session.Operator()));
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
