#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/user/class_agent_connect_interface.h"
#include "qellib10/user/user_info.h"

/// Who is logged on and what that user may do, and the way to the user store, which an application supplies:
///
///     MyUserStore store;
///     CSystemSetting setting(&store);
///     if (!setting.LogonWithDialog()) return;
///     if (setting.GetLogonUserSecurityLevel(calibrateFunction) < 1) return;
///
/// A logon that fails ends the one before. The logged-on user's account is copied from the store at the logon; what
/// changes there later is seen from the next logon on.
///
/// Questions about accounts go to the store as they are, and its answers come back. Without a connection a number is 0,
/// a count -1 and a text empty. Null texts count as empty ones. Copies share the connection, which stays the
/// application's. The order of the virtual operations is fixed.
class QELLIB10_API CSystemSetting {
public:
    /// @param connect not owned, has to live as long as this object and its copies; may be null
    explicit CSystemSetting(CClassAgentConnectInterface* connect);
    CSystemSetting(const CSystemSetting&) = default;
    CSystemSetting& operator=(const CSystemSetting&) = default;
    virtual ~CSystemSetting();

    // The user who is logged on when an application starts without asking.

    virtual int IsAutoLogon();
    virtual int SetAutoLogon(int autoLogon);
    virtual CString GetAutoLogonUserName();
    /// What LogonWithoutDialog takes for that user.
    virtual CString GetAutoLogonPassword();
    virtual int SetAutoLogonUser(const CString& username);

protected:
    /// Logs @p name on, whose account the connection gives, or with null the user off. An empty name is a name.
    /// @return 1
    virtual int SetLoginUserName(const char* name);

public:
    /// Takes another connection; nobody is logged on then.
    void Initialize(CClassAgentConnectInterface* connect);
    CClassAgentConnectInterface* GetConnectInterface() const { return m_pConnect; }

    // Logging on connects to the store first, when that is not done yet.

    /// Shows the store's dialog. @return 1, or 0 when no user logged on
    int LogonWithDialog();
    /// @return 1, or 0 when the store refuses
    int LogonWithoutDialog(const CString& username, const CString& password);
    /// 1 or 0.
    int IsLogon() const;
    void Logoff();

    // The logged-on user's rights; -1 when nobody is logged on.

    /// As CFunctionSecurity::GetFunctionSecurity.
    int GetLogonUserSecurityLevel(int functionID) const;
    int GetLogonUserManagerFlag() const;
    int GetLogonUserMakerFlag() const;

    // Accounts in the store.

    int GetUserInfo(const CString& username, CUserInfo* out) const;
    int ReloadUserList();
    int GetUserCount() const;
    /// @p index counts from 0.
    CString GetUserName(int index) const;
    int SaveFunctionSecurity(const CUserInfo& user);
    int AddUserInfo(const CUserInfo& user);
    int DeleteUserInfo(const CString& username);

    /// The settings file that all applications of a machine share: `sysinfo.ini` in the folder that the value
    /// "SystemFolder" of HKEY_LOCAL_MACHINE\\Software\\BRANTEL LABWORKS\\Common names; without one in the folder of the
    /// running program.
    static CString GetQELSystemIniPath();

private:
    void ConnectIfNeeded();

    int m_nLogon = 0;
    CUserInfo m_LogonUser;
    CClassAgentConnectInterface* m_pConnect = nullptr;
};
