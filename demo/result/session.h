#pragma once

#include <string>

#include <qellib10/qellib10.h>
#include <qellib10/store.h>

#include "demo/result/archive_trail.h"

namespace titration {

/// What an operator may do or not. Managers may change the method, too.
enum Function : int { kChangeMethod = 1, kReview = 2, kApprove = 3 };

/// A user who is logged on. Logon, refusal, logout and each change of an account are entries of the trail before they
/// take effect.
class Session {
public:
    /// Logs on. In a new store the user becomes its administrator.
    /// @param trail must outlive the session
    /// @throws Failure if the store refuses
    Session(const std::string& store, ArchiveTrail& trail, const std::string& username, const std::string& password);
    /// Logs out. What cannot be entered then changes nothing any more.
    ~Session() { m_store.Logout(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The name in the store.
    std::string Operator() { return std::string(m_store.GetLogonUsername()); }
    /// Adds another user. @throws Failure if the store refuses
    void Add(const std::string& username, const std::string& fullName, const std::string& password, Function function);
    qel::UserStore& Store() { return m_store; }
    bool IsFirst() const { return m_isFirst; }
    bool IsManager() const { return m_setting.GetLogonUserManagerFlag() == 1; }
    bool May(Function function) const { return m_setting.GetLogonUserSecurityLevel(function) > 0; }

private:
    qel::RecordedUsers m_recorded;
    qel::UserStore m_store;
    CSystemSetting m_setting{&m_store};
    bool m_isFirst = false;
};

}  // namespace titration
