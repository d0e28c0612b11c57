#pragma once

#include <functional>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "qellib10/platform/crypto/crypto_library.h"
#include "qellib10/platform/database/database.h"
#include "qellib10/platform/database/database_error.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/file_failure.h"
#include "qellib10/store/account_changes.h"
#include "qellib10/store/accounts.h"
#include "qellib10/store/attempts.h"
#include "qellib10/store/kept_passwords.h"
#include "qellib10/store/store_error.h"
#include "qellib10/store/user_store.h"

namespace qel {

/// Whether a password is right, and what a refusal of it means.
struct PasswordCheck {
    UserId user = kNobody;
    Attempt attempt = {};
    std::optional<PasswordHash> present = {};
    bool isPassword = false, isToken = false;
    bool isCounted = false;

    bool IsRight() const { return (isPassword || isToken) && !attempt.isLocked; }
};

/// Who sets a password.
enum class PasswordOrigin { kFirst, kUser, kSomebodyElse };

/// A password that is to be set, measured by the rules and hashed.
struct NewPassword {
    PasswordFault fault = PasswordFault::kNone;
    PasswordHash hash = {};                     // without a fault
    std::optional<PasswordHash> compared = {};  // the present one, from before it was compared
};

/// The data of a UserStore, and the steps that its operations share. A step that fails throws what ResultOf catches.
struct UserStoreState {
    UserStoreState(const CString& storePath, UserStoreSettings given) : path(storePath), settings(std::move(given)) {}

    /// What @p body returns; a value-initialized one when a step fails, and LastFailure has the cause.
    /// @param name of the public operation
    template <class Body> auto ResultOf(const char* name, Body body) -> decltype(body());
    /// Either all of @p change takes place or nothing. A store that has an administrator keeps one. @p last
    /// cannot be undone, so it runs when all but the commit is done.
    /// @param account whose it is; what is changed of it, or of the automatic logon, is reported before it takes effect
    template <class Change> int ChangeAccounts(
        const char* name, const CString& account, Change change, const std::function<void()>& last = [] {});
    /// The same with a password, empty for none. Comparing and hashing it takes long, so it is done before others wait
    /// for the store.
    /// @param change returns whose password it is
    template <class Change> int ChangeAccountAndPassword(const char* name, const CUserInfo& account,
                                                         const CString& password, PasswordOrigin origin, Change change);
    template <class Change> void MakeChange(const CString& account, Change change, const std::function<void()>& last);

    void Connect();
    /// Asks UserStoreSettings::record. @throws StoreError if it refuses
    void Report(AccountEvent event, const CString& account) const;
    void Report(const AccountChange& change) const;
    /// Nobody is logged on then, also if that cannot be recorded.
    void EndLogon();
    /// An attempt of the user that was counted, and whose program was killed before it could be reported. Nobody knows
    /// which of the unknown names an attempt was for, so these are left out. The caller has the user's LogonTurn.
    void ReportInterrupted(UserId user) const;
    /// Counts an attempt. It takes the same time for every name and password. The caller has the user's LogonTurn.
    PasswordCheck Check(const CString& username, std::string_view password) const;
    /// The password was right.
    void TakeBackAttempt(UserId user) const;
    /// @param event kLogonRefused, or the same of a change of the password
    /// @return 0
    int RefuseAttempt(AccountEvent event, const PasswordCheck& check, const CString& reason = {}) const;
    /// The account that a logon is about to count for, if the password or token that was right is still valid.
    std::optional<CUserInfo> StillRight(const PasswordCheck& check, std::string_view password) const;
    /// Of the user's present password, which is the right one: kLoggedOn unless it has to be changed.
    LogonStatus StatusOf(UserId user) const;
    /// The same of what is known of it.
    LogonStatus StatusOf(const PasswordDates& dates) const;
    /// By the clock, within the years 1970 to 9999.
    std::chrono::sys_seconds Now() const;
    /// Who is logged on. Nothing also if that account was deleted, and its ID given to another name.
    std::optional<CUserInfo> LoggedOn() const;
    /// Their name.
    CString Actor() const;
    /// @throws StoreError before Connect
    Database& Opened() const;
    /// @throws StoreError when there is no such user
    UserId Existing(const CString& username) const;
    /// @param user kNobody for an account that is to be added
    NewPassword Prepare(UserId user, const CUserInfo& account, const CString& password, PasswordOrigin origin) const;
    PasswordFault FaultOf(UserId user, const CUserInfo& account, const CString& password, PasswordOrigin origin) const;
    /// @throws StoreError if the rules do not take it, after that was reported, or if it was compared with passwords
    /// that are others by now
    void SetPassword(UserId user, const NewPassword& made, PasswordOrigin origin);

    std::string StorePath() const;  // POSIX, as the next
    std::string TokenPath() const { return StorePath() + ".token"; }

    CString path;
    UserStoreSettings settings;
    LogonPrompt prompt;
    std::unique_ptr<Database> database;  // null until connected
    std::vector<CString> names;
    UserId logonUser = kNobody;
    CString logonName;  // of the same account
    LogonStatus logonStatus = LogonStatus::kNone;
    PasswordFault passwordFault = PasswordFault::kNone;
};

/// Records that SQLite refused something of the store at @p path.
void FailedBy(Operation& operation, const DatabaseError& failure, const CString& path) noexcept;

// The one place where a failure becomes a result. Of a text and a record no value is a failure.
template <class Body> auto UserStoreState::ResultOf(const char* name, Body body) -> decltype(body()) {
    Operation running(name);
    try {
        auto result = body();
        if constexpr (std::is_same_v<decltype(result), int>) {
            running.Ended(result);
        } else {
            running.Ended(true);
        }
        return result;
    } catch (const StoreError& failure) {
        running.Failed(failure.Kind(), path.View(), failure.what());
    } catch (const DatabaseError& failure) {
        FailedBy(running, failure, path);
    } catch (const CryptoError& failure) {
        running.Failed(FailureKind::kData, path.View(), failure.what());
    } catch (const CFileException& failure) {
        FailedBy(running, failure);
    } catch (const std::bad_alloc&) {
        FailedByMemory(running);
    }
    return {};
}

template <class Change> int UserStoreState::ChangeAccounts(const char* name, const CString& account, Change change,
                                                           const std::function<void()>& last) {
    passwordFault = PasswordFault::kNone;
    return ResultOf(name, [&] {
        MakeChange(account, change, last);
        return 1;
    });
}

template <class Change> int UserStoreState::ChangeAccountAndPassword(const char* name, const CUserInfo& account,
                                                                     const CString& password, PasswordOrigin origin,
                                                                     Change change) {
    passwordFault = PasswordFault::kNone;
    return ResultOf(name, [&] {
        std::optional<NewPassword> made;
        const UserId before = FindUser(Opened(), account.GetUsername());
        if (!password.IsEmpty() || origin == PasswordOrigin::kFirst) made = Prepare(before, account, password, origin);
        const auto both = [&] {
            const UserId user = change();
            if (made) SetPassword(user, *made, origin);
        };
        MakeChange(account.GetUsername(), both, [] {});
        return 1;
    });
}

template <class Change>
void UserStoreState::MakeChange(const CString& account, Change change, const std::function<void()>& last) {
    Transaction transaction(Opened());
    const AccountState before = ReadAccountState(*database, account);
    const CString actor = Actor();
    const bool hadAdministrator = HasAdministrator(*database);
    change();
    if (hadAdministrator && !HasAdministrator(*database))
        throw StoreError(FailureKind::kState, "nobody would be left to administrate");
    for (AccountChange& made : ChangesOf(before, ReadAccountState(*database, account))) {
        made.user = actor;
        Report(made);
    }
    last();
    auto newNames = UserNames(*database);  // nothing may fail after the commit
    transaction.Commit();
    names.swap(newNames);
}

}  // namespace qel
