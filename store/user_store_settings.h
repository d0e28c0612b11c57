#pragma once

#include <chrono>
#include <functional>

#include "qellib10/platform/crypto/password_cost.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/store/password_rules.h"
#include "qellib10/user/account_change.h"

namespace qel {

/// What a logon came to. That a password has expired or has to be changed is said only to whoever knows it.
enum class LogonStatus {
    kNone,  ///< there was none, or it could not be checked or recorded
    kLoggedOn,
    kRefused,          ///< name or password are wrong, or the user is locked
    kPasswordExpired,  ///< PasswordRules::greatestAge; UserStore::ChangePassword leads on
    kPasswordToChange  ///< PasswordRules::mustChangeAtFirstUse; UserStore::ChangePassword leads on
};

/// What a logon dialog fills in.
struct LogonRequest {
    CString username;  ///< as entered before, when the dialog is shown again
    CString password;  ///< the same while the password has to be changed, else empty
    int refused = 0;   ///< how many times it was refused since the dialog was first shown, or first asked to change
    LogonStatus status = LogonStatus::kNone;  ///< of the time before: whether the dialog has to ask for a new password
    PasswordFault fault = PasswordFault::kNone;  ///< why the new password was not taken
    CString newPassword = {};                    ///< if it is filled in, the password is changed first
};

/// Asks the person at the screen. @return false when cancelled
using LogonPrompt = std::function<bool(LogonRequest&)>;

/// When wrong passwords lock a user.
struct LogonLock {
    int mostRefused = 5;  ///< this many wrong passwords in a row lock a user; each further one locks again
    std::chrono::seconds length = std::chrono::minutes(5);  ///< at most 10 000 years; longer ones count as that
};

/// What an installation may want to be different in a UserStore.
struct UserStoreSettings {
    PasswordCost cost = {};  ///< passwords kept at another cost are hashed again at the next logon
    LogonLock lock = {};
    PasswordRules passwords = {};  ///< nothing is asked without them
    /// Is asked before anything takes effect: logons and their refusals, logouts, locks, passwords that are not taken,
    /// and each item of an account that is changed. If it returns false, that is not done; empty: nobody is asked.
    /// qel::RecordedUsers makes an entry of a trail. It must not use the store.
    std::function<bool(const AccountChange&)> record = {};
    bool isReadOnly = false;  ///< accounts are only read: a logon is refused, since it would count an attempt
    std::function<std::chrono::sys_seconds()> clock = [] {
        return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    };
};

}  // namespace qel
