#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/user/function_security.h"

/// A user's account, as exchanged with the user store: names, password and what the user may do, in one value. Where
/// these are passed one by one, a user gets the rights of another one as soon as one call is forgotten.
///
/// @code
/// CClassAgentConnectInterface& OurStore();  // of the application
/// CUserInfo user;
/// user.SetUsername("mori");
/// user.SetUserFullname("K. Mori");
/// user.SetPassword("violet");
/// user.SetManagerFlag(0);
/// if (!OurStore().AddUser(user)) return;
/// @endcode
///
/// A value class; copies have their own table. A change here changes no account before the value is given to the store.
/// One thread at a time.
class QELLIB10_API CUserInfo {
public:
    /// User ID 0, texts empty, security like a new CFunctionSecurity.
    CUserInfo() = default;
    CUserInfo(const CUserInfo&) = default;
    CUserInfo& operator=(const CUserInfo&) = default;
    virtual ~CUserInfo();

    /// Empties the texts and initialises the security. Kept: the user ID does not change.
    void Initialize();

    const int& GetUserID() const { return m_nUserID; }
    void SetUserID(const int& userID) { m_nUserID = userID; }

    /// The name to log on with.
    const CString& GetUsername() const { return m_szUsername; }
    void SetUsername(const CString& username) { m_szUsername = username; }

    /// The name that people see.
    const CString& GetUserFullname() const { return m_szUserFullname; }
    void SetUserFullname(const CString& userFullname) { m_szUserFullname = userFullname; }

    /// The plain password, as exchanged with the user store; nothing is hashed or compared here.
    const CString& GetPassword() const { return m_szPassword; }
    void SetPassword(const CString& password) { m_szPassword = password; }

    /// Setting copies the table and the privileges, not what a derived class overrides.
    const CFunctionSecurity& GetSecurity() const { return m_Security; }
    void SetSecurity(const CFunctionSecurity& security) { m_Security = security; }

    /// As returned by the security.
    int GetFunctionSecurity(int functionID) const { return m_Security.GetFunctionSecurity(functionID); }
    int SetFunctionSecurity(int functionID, int securityLevel);
    int GetMakerFlag() const { return m_Security.GetMakerParameter(); }
    int GetManagerFlag() const { return m_Security.GetManagerParameter(); }
    /// Like its SetMakerParameter and SetManagerParameter: a maker is always a manager.
    void SetMakerFlag(int maker);
    void SetManagerFlag(int manager);

private:
    int m_nUserID = 0;
    CString m_szUsername;
    CString m_szUserFullname;
    CString m_szPassword;
    CFunctionSecurity m_Security;
};
