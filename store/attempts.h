#pragma once

#include <chrono>
#include <optional>

#include "qellib10/store/accounts.h"
#include "qellib10/store/user_store_settings.h"

// Counts refused logons and locks a user after too many.
namespace qel {

struct Attempt {
    bool isLocked = false;  ///< the user was locked already, so that even the right password does not count
    bool locks = false;     ///< if it is refused, the user is locked from now on
};

/// Counts an attempt as refused, before its password is checked: so a guess counts also when its program is killed or
/// the disk is full. The right password takes it back (ForgetAttempts) within the turn of the logon, before another one
/// is checked. @p user may be kNobody, which costs the same.
/// @param now within the years 1970 to 9999
/// @param isReported it is to be reported: until that is done (ForgetUnreported) it is kept in a table of its own,
/// which is made then, so that programs that do not know the table open the file
Attempt CountAttempt(Database& database, UserId user, std::chrono::sys_seconds now, const LogonLock& rule,
                     bool isReported);

/// An attempt that was counted and neither reported nor taken back.
std::optional<Attempt> UnreportedAttempt(Database& database, UserId user);
void ForgetUnreported(Database& database, UserId user);

/// After a success, or when an administrator sets a new password.
void ForgetAttempts(Database& database, UserId user);

}  // namespace qel
