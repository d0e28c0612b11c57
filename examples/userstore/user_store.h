#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>

#include "accounts.h"
#include "attempts.h"
#include "secrets.h"

namespace userstore {

/// What a logon dialog fills in.
struct LogonRequest {
    CString username;  // as entered before, when it is shown again
    CString password;
    int refused = 0;  // how many times it was refused since the dialog began
};

/// Asks the person at the screen. @return false when cancelled
using LogonPrompt = std::function<bool(LogonRequest&)>;

/// What an installation may want otherwise.
struct UserStoreSettings {
    HashCost cost;  // passwords kept at another cost are hashed again at the next logon
    LockRule lock;
    bool isReadOnly = false;  // accounts are looked at alone: a logon would count an attempt, and so is refused
    std::function<std::chrono::sys_seconds()> clock = [] {
        return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    };
};

/// The users of an application, in an SQLite database of its own:
///
///     userstore::UserStore store(R"(C:\data\users.db)");
///     store.Connect();
///     if (!store.IsConnected()) return Complain(store.LastError());
///     if (store.GetUserCount() == 0) store.CreateFirstAdministrator("admin", password);
///     store.SetLogonPrompt(AskInDialog);
///     CSystemSetting setting(&store);
///     setting.LogonWithDialog();
///
/// Passwords are kept as argon2id hashes, so the records that come back have none. An unknown user costs the same time
/// as a wrong password. Logons of one user, from all programs, are checked one after the other, so that guessing side
/// by side gains nothing; they wait in no order, for half a minute at most. After five refusals one after the other a
/// user is locked for five minutes, and again after each further one, until a logon succeeds outside a lock or an
/// administrator sets a new password.
///
/// Names that differ in case only are one name. A name has 1 to 64 bytes and no control codes, a password up to 1024.
/// The store does not ask who calls it: whoever may write the file, mode 0600 at first, may change it, and what a
/// logged-on user may do to accounts is for the application to say. One thread at a time; several programs may use one
/// file. A program that forks does so before it connects.
///
/// An int is 1, or 0 when nothing was done; texts are empty then. All fails before Connect.
class UserStore : public CClassAgentConnectInterface {
public:
    /// @param path in the library's form; opened by Connect
    explicit UserStore(const CString& path, UserStoreSettings settings = {});
    UserStore(const UserStore&) = delete;
    UserStore& operator=(const UserStore&) = delete;

    /// Opens the database; a missing one is made, without users, unless the store is read only.
    void Connect() override;
    int IsConnected() override;
    /// Whether all of the database can be read, and fits together. Takes as long as reading it.
    int CheckIntegrity();
    /// Why the last operation that failed did; not for a logon, which says nothing about its reasons.
    const std::string& LastError() const { return m_lastError; }

    /// Adds a manager, as long as no manager or maker can log on.
    int CreateFirstAdministrator(const CString& username, const CString& password);

    // Logging on.

    void SetLogonPrompt(LogonPrompt prompt) { m_prompt = std::move(prompt); }
    /// Asks up to three times. Without a prompt 0.
    int LogonWithDialog() override;
    int Logon(const CString& username, const CString& password) override;
    /// As it stands now; initialised with user ID 0 when that user is gone.
    void GetLogonUser(CUserInfo* out) override;
    CString GetLogonUsername() override;

    // Automatic logon: a token takes the place of the password, in a file beside the database that only its owner can
    // read. It is valid until another user, or none, is set; the switch is for the application to follow.

    int IsAutoLogon() override;
    int SetAutoLogon(int autoLogon) override;
    CString GetAutoLogonUserName() override;
    /// Empty when the file does not hold the valid token.
    CString GetAutoLogonPassword() override;
    /// Makes a new token; the empty name removes it.
    int SetAutoLogonUser(const CString& username) override;

    // Accounts. A change that leaves nobody to administrate is refused.

    int GetUserInfo(const CString& username, CUserInfo* out) override;
    /// The list that count and names come from is read here, by Connect, and after changes by this object.
    int ReloadUserList() override;
    /// -1 before Connect.
    int GetUserCount() override;
    CString GetUserName(int index) override;
    /// Saves all of an existing user's record but the ID. An empty password stays what it was.
    int SaveFunctionSecurity(const CUserInfo& user) override;
    /// Without a password the user cannot log on yet. User ID 0: the store chooses one.
    int AddUser(const CUserInfo& user) override;
    int DeleteUser(const CString& username) override;

private:
    template <class Body> auto Answer(Body body) -> decltype(body());
    Database& Opened() const;
    UserId Existing(const CString& username) const;
    std::string StorePath() const;  // POSIX
    std::string TokenPath() const;
    template <class Change> int ChangeAccounts(
        Change change, const std::function<void()>& last = [] {});
    void SetPassword(UserId user, const CString& password);
    void HashAgain(UserId user, const PasswordHash& old, const std::string& password);
    bool IsToken(UserId user, const std::string& password) const;

    CString m_path;
    UserStoreSettings m_settings;
    LogonPrompt m_prompt;
    std::unique_ptr<Database> m_database;  // null until connected
    std::vector<CString> m_names;
    UserId m_logonUser = kNobody;
    std::string m_lastError;
};

}  // namespace userstore
