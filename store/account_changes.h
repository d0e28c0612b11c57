#pragma once

#include <optional>
#include <vector>

#include "qellib10/platform/database/database.h"
#include "qellib10/store/accounts.h"
#include "qellib10/user/account_change.h"

namespace qel {

/// What can be seen of an account and of the automatic logon: compared before and after a change, so that none of it
/// can be forgotten where a change is made.
struct AccountState {
    std::optional<CUserInfo> record;
    std::optional<PasswordHash> password;
    CString automaticUser;
    TokenDigest token = {};
};
AccountState ReadAccountState(Database& database, const CString& username);

/// What was changed, item by item, without who has done it.
std::vector<AccountChange> ChangesOf(const AccountState& before, const AccountState& after);

}  // namespace qel
