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
        throw Failure("\"" + username + "\" is not logged on: name or password are wrong, or were too often");
}

}  // namespace titration
