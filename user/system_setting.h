#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/user/class_agent_connect_interface.h"
#include "qellib10/user/user_info.h"

/// Who is logged on and what that user may do. An application asks here before each function that not everybody may
/// use, and never sees how its user store, such as qel::UserStore, checks a password.
///
/// @code
/// CClassAgentConnectInterface& OurStore();  // of the application
/// constexpr int kCalibrate = 100;           // a function of the application
/// CSystemSetting setting(&OurStore());
/// if (!setting.LogonWithDialog()) return;
/// if (setting.GetLogonUserSecurityLevel(kCalibrate) < 1) return;  // -1 without a logon: never compare with "not 0"
/// @endcode
///
/// A failed logon ends the previous one. The logged-on user's account is copied from the store at the logon; later
/// changes there take effect at the next logon.
///
/// Calls about accounts are passed to the store, and its results returned. Without a connection a number is 0, a count
/// -1 and a text empty. Null texts count as empty ones. Copies share the connection, which still belongs to the
/// application. The order of the virtual operations is fixed.
class QELLIB10_API CSystemSetting {
public:
    /// @param connect not owned; must live as long as this object and its copies; may be null
    explicit CSystemSetting(CClassAgentConnectInterface* connect);
    CSystemSetting(const CSystemSetting&) = default;
    CSystemSetting& operator=(const CSystemSetting&) = default;
    virtual ~CSystemSetting();

    // The user who is logged on when an application starts without asking.

    virtual int IsAutoLogon();
    virtual int SetAutoLogon(int autoLogon);
    virtual CString GetAutoLogonUserName();
    /// The password that LogonWithoutDialog accepts for that user.
    virtual CString GetAutoLogonPassword();
    virtual int SetAutoLogonUser(const CString& username);

protected:
    /// Logs on @p name, whose account the connection provides, or with null logs the user off. An empty name is also a
    /// name.
    /// @return 1
    virtual int SetLoginUserName(const char* name);

public:
    /// Sets another connection; nobody is logged on then.
    void Initialize(CClassAgentConnectInterface* connect);
    CClassAgentConnectInterface* GetConnectInterface() const { return m_pConnect; }

    // These connect to the store first if it is not connected yet.

    /// Shows the store's dialog. @return 1, or 0 when no user logged on
    int LogonWithDialog();
    /// @return 1, or 0 if the store refuses
    int LogonWithoutDialog(const CString& username, const CString& password);
    /// 1 or 0.
    int IsLogon() const;
    void Logoff();

    // The logged-on user's rights; -1 if nobody is logged on.

    /// Like CFunctionSecurity::GetFunctionSecurity.
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

    /// The settings file that all applications of a machine share: `sysinfo.ini` in the folder named by the value
    /// "SystemFolder" of HKEY_LOCAL_MACHINE\\Software\\BRANTEL LABWORKS\\Common; without that value in the folder of
    /// the running program.
    static CString GetQELSystemIniPath();

private:
    void ConnectIfNeeded();

    int m_nLogon = 0;
    CUserInfo m_LogonUser;
    CClassAgentConnectInterface* m_pConnect = nullptr;
};
