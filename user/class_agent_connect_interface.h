#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/user/user_info.h"

/// What the library asks of a user store: who has an account, who may log on, and what the accounts hold. Passwords are
/// the matter of the store alone; CSystemSetting never compares or keeps one, so an application can use the accounts of
/// its company without a change here. It takes qel::UserStore or derives a class, and passes an object of it to
/// CSystemSetting, which calls these operations and no others.
///
/// @code
/// CClassAgentConnectInterface& OurStore();  // of the application
/// CSystemSetting setting(&OurStore());
/// if (!setting.LogonWithoutDialog("mori", "violet")) return;
/// if (setting.GetLogonUserSecurityLevel(100) < 1) return;  // the application's function 100 is not allowed
/// @endcode
///
/// An int is not 0 for yes or success, and 0 for no or failure, unless stated.
///
/// Kept for stores that were built for an earlier version: the slots of the table of virtual operations are fixed. They
/// count from 1, the destructor being slot 1; reserved ones return 0.
class QELLIB10_API CClassAgentConnectInterface {
public:
    CClassAgentConnectInterface() = default;
    CClassAgentConnectInterface(const CClassAgentConnectInterface&) = default;
    CClassAgentConnectInterface& operator=(const CClassAgentConnectInterface&) = default;
    virtual ~CClassAgentConnectInterface();

    virtual void Connect() = 0;     ///< slot 2: opens the connection; IsConnected returns whether that worked
    virtual int IsConnected() = 0;  ///< slot 3
    virtual int Reserved4();
    virtual int Reserved5();
    virtual int Reserved6();
    virtual int LogonWithDialog() = 0;                                        ///< slot 7: asks the person at the screen
    virtual int Logon(const CString& username, const CString& password) = 0;  ///< slot 8
    virtual int Reserved9();
    virtual int Reserved10();
    virtual void GetLogonUser(CUserInfo* out) = 0;  ///< slot 11: the account of the user who logged on last
    virtual CString GetLogonUsername() = 0;         ///< slot 12: that user's name
    virtual int Reserved13();
    virtual int IsAutoLogon() = 0;                              ///< slot 14: a user is logged on without being asked
    virtual int SetAutoLogon(int autoLogon) = 0;                ///< slot 15
    virtual CString GetAutoLogonUserName() = 0;                 ///< slot 16
    virtual CString GetAutoLogonPassword() = 0;                 ///< slot 17: accepted by Logon for that user
    virtual int SetAutoLogonUser(const CString& username) = 0;  ///< slot 18
    virtual int GetUserInfo(const CString& username, CUserInfo* out) = 0;  ///< slot 19
    virtual int Reserved20();
    virtual int Reserved21();
    virtual int ReloadUserList() = 0;                             ///< slot 22
    virtual int GetUserCount() = 0;                               ///< slot 23
    virtual CString GetUserName(int index) = 0;                   ///< slot 24: @p index counts from 0
    virtual int SaveFunctionSecurity(const CUserInfo& user) = 0;  ///< slot 25
    virtual int AddUser(const CUserInfo& user) = 0;               ///< slot 26
    virtual int Reserved27();
    virtual int DeleteUser(const CString& username) = 0;  ///< slot 28
};
