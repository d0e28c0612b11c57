#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/crypto/password_hash.h"
#include "qellib10/platform/crypto/token.h"
#include "qellib10/platform/database/database.h"
#include "qellib10/user/user_info.h"

// The tables of the store (docs/formats.md). Texts are kept in UTF-8; names that differ in case only are one name. A
// step that fails throws StoreError or DatabaseError. The caller puts several changes into one Transaction.
namespace qel {

using UserId = std::int64_t;
inline constexpr UserId kNobody = 0;  // no account has it

/// Makes the tables in an empty database.
/// @throws StoreError too for the database of another program or of a later version
void PrepareTables(Database& database);
/// @throws StoreError unless the tables are there, and of this version
void RequireTables(Database& database);
/// @throws StoreError unless pages, indexes and what refers to users are as they have to be
void RequireSound(Database& database);

/// The form of a name that does not depend on case, in UTF-8.
std::string FoldedName(const CString& name);
/// kNobody for an unknown name.
UserId FindUser(Database& database, const CString& name);
/// The names of all users, in order without regard to case.
std::vector<CString> UserNames(Database& database);

/// The account without its password; nothing when there is no such user.
std::optional<CUserInfo> ReadUser(Database& database, UserId user);
/// Adds an account without a password, under the record's user ID or, when that is 0, a new one.
/// @throws StoreError when name or ID are taken, or for a name that is empty, has more than 64 bytes or control codes
UserId AddAccount(Database& database, const CUserInfo& record);
/// Replaces all of the record except name, ID and password.
void UpdateAccount(Database& database, UserId user, const CUserInfo& record);
void DeleteAccount(Database& database, UserId user);

/// Nothing when the user has no password yet.
std::optional<PasswordHash> ReadPassword(Database& database, UserId user);
/// The highest cost of a password that can be checked; @p usual where there is none.
PasswordCost HighestCost(Database& database, const PasswordCost& usual);
void StorePassword(Database& database, UserId user, const PasswordHash& hash);

/// Whether a manager or maker has a password.
bool HasAdministrator(Database& database);

/// The user who is logged on without being asked.
struct AutomaticLogon {
    int isOn = 0;
    UserId user = kNobody;
    TokenDigest token = {};
};
AutomaticLogon ReadAutomaticLogon(Database& database);
void SwitchAutomaticLogon(Database& database, int isOn);
/// kNobody: none, whatever the token.
void StoreAutomaticUser(Database& database, UserId user, const TokenDigest& token);

}  // namespace qel
