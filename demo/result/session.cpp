#include "demo/result/session.h"

#include "demo/support/failure.h"

namespace titration {
namespace {

qel::UserStoreSettings RecordedBy(qel::RecordedUsers& recorded) {
    qel::UserStoreSettings settings;
    settings.record = [&recorded](const qel::AccountChange& change) { return recorded.Enter(change); };
    return settings;
}

}  // namespace

Session::Session(const std::string& store, ArchiveTrail& trail, const std::string& username,
                 const std::string& password)
    : m_recorded(trail.Trail()), m_store(store.c_str(), RecordedBy(m_recorded)) {
    m_store.Connect();
    if (m_store.IsConnected() == 0) throw Failure(store + ": " + qel::LastFailure().text);
    m_isFirst = m_setting.GetUserCount() == 0;
    m_recorded.SetReason("the first user of the folder");
    if (m_isFirst && m_store.CreateFirstAdministrator(username.c_str(), password.c_str()) == 0)
        throw Failure(store + ": " + qel::LastFailure().text);
    if (m_setting.LogonWithoutDialog(username.c_str(), password.c_str()) != 0) return;
    const qel::Failure why = qel::LastFailure();
    throw Failure("nobody is logged on: " +
                  (why.kind == qel::FailureKind::kRefused
                       ? "name or password are wrong, or were too often"  // which, nobody learns
                       : why.text));
}

void Session::Add(const std::string& username, const std::string& fullName, const std::string& password,
                  Function function) {
    CUserInfo user;
    user.SetUsername(username.c_str());
    user.SetUserFullname(fullName.c_str());
    user.SetPassword(password.c_str());
    CFunctionSecurity rights;
    rights.AddFunctionInfo(CFunctionInfo(function, function == kApprove ? "approve" : "review", 1));
    user.SetSecurity(rights);
    m_recorded.SetReason("a new account");
    if (m_store.AddUser(user) == 0)
        throw Failure(username + ": " + qel::FailureSentence(qel::LastFailure(), "no user"));
}

}  // namespace titration
