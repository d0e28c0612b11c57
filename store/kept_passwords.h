#pragma once

#include <chrono>
#include <optional>

#include "qellib10/store/accounts.h"
#include "qellib10/store/password_rules.h"

// When passwords were set, and earlier ones: two tables (docs/formats.md) that are made when a rule first needs them,
// so that a store without rules keeps its bytes, and programs that do not know them open the file. The caller has a
// Transaction, except for WasUsed. A step that fails throws StoreError or DatabaseError.
namespace qel {

/// What is known of a user's present password.
struct PasswordDates {
    std::chrono::sys_seconds set;     ///< when it was set, or first seen by a program with rules
    std::chrono::sys_seconds latest;  ///< the latest time at a logon with it, never before `set`
    bool isToChange = false;          ///< somebody else has set it
};

/// Nothing is known of a password that was set by a program without rules.
/// @param salt of the present password
/// @throws StoreError for times outside of the years 1970 to 9999
std::optional<PasswordDates> ReadPasswordDates(Database& database, UserId user, const PasswordHash& present);
void StorePasswordDates(Database& database, UserId user, const PasswordHash& present, const PasswordDates& dates);
/// The password stays the same, and is hashed in another way.
void KeepPasswordDates(Database& database, UserId user, const PasswordHash& old, const PasswordHash& present);

/// How many of the rule's count there are at most, without the present one.
int EarlierPasswords(const PasswordRules& rules);
/// Whether @p password is the present one, if there is one, or one of the last @p earlier before it. Takes as long as
/// all these logons. One that cannot be checked, in a damaged file, is none of them: else nobody could set another one.
bool WasUsed(Database& database, UserId user, std::string_view password, int earlier);
/// Before another password takes its place, the present one becomes an earlier one; of these, the last @p earlier stay.
void KeepEarlierPassword(Database& database, UserId user, int earlier);

}  // namespace qel
