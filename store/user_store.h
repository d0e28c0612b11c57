#pragma once

#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/store/user_store_settings.h"
#include "qellib10/user/class_agent_connect_interface.h"

namespace qel {

struct UserStoreState;

/// The users of an application with their passwords, in an SQLite database of its own. An application that keeps
/// accounts by itself easily stores passwords that can be read, or lets somebody guess them without end; this store
/// does neither.
///
/// @code
///     qel::UserStore store(R"(C:\data\users.db)");
///     store.Connect();
///     if (!store.IsConnected()) return;  // LastFailure says why
///     if (store.GetUserCount() == 0) store.CreateFirstAdministrator("admin", "first password");
///     store.SetLogonPrompt([](qel::LogonRequest& request) { return false; });  // asks in a dialog
///     CSystemSetting setting(&store);
///     if (!setting.LogonWithDialog()) return;
/// @endcode
///
/// Passwords are kept as argon2id hashes, so records that are read have none. An unknown user costs the same time as a
/// wrong password. Logons of one user, from all programs, are checked one after the other, so that guessing in parallel
/// gains nothing; they wait in no order, for half a minute at most, and a program that is killed does not delay others.
/// Only wrong passwords count: after five, one after the other, a user is locked for five minutes, and again after each
/// further one, until a logon succeeds outside a lock or an administrator sets a new password.
///
/// Names that differ in case only are one name. A name has 1 to 64 bytes and no control codes, a password up to 1024
/// bytes. The store does not ask who calls it: whoever may write the file (mode 0600 at first) may change it, and what
/// a logged-on user may do to accounts is for the application to decide. One thread at a time; several programs may use
/// one file. A program that forks does so before it connects.
///
/// An int is 1, or 0 when nothing was done; texts are empty then, and qel::LastFailure has the reason. For a wrong
/// name or password it only says that it was refused. Everything fails before Connect. Nothing is thrown but
/// std::bad_alloc, by what returns a text. The tables are described in docs/formats.md.
///
/// What else an installation asks of passwords, and how long they last, is in UserStoreSettings::passwords.
///
/// With UserStoreSettings::record, everything is recorded before it takes effect: entry by entry, then the change.
/// Where a later entry is refused, or the disk is full, those before it are there although nothing was changed: the
/// record may say more than was done, never less. Other programs wait for the store meanwhile, for ten seconds at most,
/// so recording must not take long. A refused logon counts against the user also if it cannot be
/// recorded; that, or one whose program was killed in between, is recorded before the next one of the user is checked.
///
/// Logging on is in user_logon.cpp, automatic logon in automatic_logon.cpp, what is about passwords in
/// password_change.cpp, everything else in user_store.cpp.
class QELLIB10_API UserStore : public CClassAgentConnectInterface {
public:
    /// @param path in the library's form; opened by Connect
    explicit UserStore(const CString& path, UserStoreSettings settings = {});
    ~UserStore() override;
    UserStore(const UserStore&) = delete;
    UserStore& operator=(const UserStore&) = delete;

    /// Opens the database; a missing one is made, without users, unless the store is read only. Without effect when it
    /// is open.
    void Connect() override;
    int IsConnected() override;
    /// Whether all of the database can be read, and what it holds fits together. Takes as long as reading it.
    int CheckIntegrity();

    /// Adds a manager, unless a manager or maker with a password exists.
    int CreateFirstAdministrator(const CString& username, const CString& password);

    // Logging on.

    void SetLogonPrompt(LogonPrompt prompt);
    /// Asks up to three times; from when the password has to be changed, up to three times more. Without a prompt 0.
    /// The logon before ends at the first name and password that are tried, or when the dialog is cancelled.
    int LogonWithDialog() override;
    /// Ends the logon before, also where this one fails. Waits for other logons of this user, then takes as long as the
    /// password's cost says. Refused also if the password is reset, or the account deleted, meanwhile.
    int Logon(const CString& username, const CString& password) override;
    /// What the last logon came to.
    LogonStatus GetLogonStatus() const;
    /// Ends the logon, as the next one does. @return 0 also if it could not be recorded; nobody is logged on all the
    /// same
    int Logout();
    /// The account as it is now; an empty one with user ID 0 when nobody is logged on or that user was deleted.
    void GetLogonUser(CUserInfo* out) override;
    CString GetLogonUsername() override;

    // Passwords.

    /// Changes a password by its user, who need not be logged on and is not logged on by it. The present one is checked
    /// as by Logon: a wrong one counts, and may lock the user.
    /// @return 0 also for a password that the rules do not take: see GetPasswordFault
    int ChangePassword(const CString& username, const CString& password, const CString& newPassword);
    /// Why the last password that was set or changed was not taken. kNone also when something else failed.
    PasswordFault GetPasswordFault() const;

    // Automatic logon: a token takes the place of the password, in a file next to the database (its name with ".token")
    // that only its owner can read. It is valid until another user, or none, is set, and does not grow old. Whether to
    // log on automatically is kept here for the application, which does it.

    int IsAutoLogon() override;
    int SetAutoLogon(int autoLogon) override;
    CString GetAutoLogonUserName() override;
    /// The token; empty when the file does not hold the valid one.
    CString GetAutoLogonPassword() override;
    /// Makes a new token; the empty name removes it.
    int SetAutoLogonUser(const CString& username) override;

    // Accounts. A change that leaves no manager or maker with a password is refused.

    int GetUserInfo(const CString& username, CUserInfo* out) override;
    /// Reads the list that count and names come from; so do Connect and each change by this object.
    int ReloadUserList() override;
    /// -1 before Connect.
    int GetUserCount() override;
    /// @param index from 0, in the order of the names without regard to case
    CString GetUserName(int index) override;
    /// Saves all of an existing user's record except the ID. An empty password stays what it was. Another one counts as
    /// set by somebody else.
    int SaveFunctionSecurity(const CUserInfo& user) override;
    /// Without a password the user cannot log on yet; one counts as set by somebody else. With user ID 0 the store
    /// chooses one. An ID may be that of an account that was deleted: where that one is still logged on, nobody is,
    /// unless the name is the same.
    int AddUser(const CUserInfo& user) override;
    int DeleteUser(const CString& username) override;

private:
    std::unique_ptr<UserStoreState> m_state;
};

}  // namespace qel
