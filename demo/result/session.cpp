#include "demo/result/session.h"

#include "demo/support/failure.h"

namespace titration {

Session::Session(const std::string& store, const std::string& username, const std::string& password)
    : m_store(store.c_str()) {
    m_store.Connect();
    if (m_store.IsConnected() == 0) throw Failure(store + ": " + qel::LastFailure().text);
    m_isFirst = m_setting.GetUserCount() == 0;
    if (m_isFirst && m_store.CreateFirstAdministrator(username.c_str(), password.c_str()) == 0)
        throw Failure(store + ": " + qel::LastFailure().text);
    if (m_setting.LogonWithoutDialog(username.c_str(), password.c_str()) == 0)
        throw Failure(
            "nobody is logged on: name or password are wrong, or were too often");  // what was typed may be both
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
    if (m_store.AddUser(user) == 0)
        throw Failure(username + ": " + qel::FailureSentence(qel::LastFailure(), "no user"));
}

}  // namespace titration
