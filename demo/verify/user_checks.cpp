#include "demo/verify/user_checks.h"

#include <qellib10/store.h>

#include "demo/support/number.h"
#include "demo/verify/checks.h"

namespace titration {

// Each logon writes to the store; its sums are those at the end of the last run.
std::string CheckUsers(const MadeFiles& made, const std::vector<CHistoryRenewInfo>& records) {
    qel::UserStoreSettings settings;
    settings.isReadOnly = true;
    qel::UserStore store(made.Path("users.db").c_str(), settings);
    store.Connect();
    const bool isWhole = store.IsConnected() != 0 && store.CheckIntegrity() != 0;
    Require(isWhole, qel::LastFailure().text);
    CUserInfo user;
    for (const CHistoryRenewInfo& record : records) {
        const CString& name = record.GetOperator();
        const bool isKnown = store.GetUserInfo(name, &user) != 0 && user.GetUsername() == name;
        Require(isKnown || name.IsEmpty(), "has no user \"" + std::string(name) + "\", who registered a version");
    }
    made.RequireAsMade("users.db");
    return "whole, " + Counted(store.GetUserCount(), "user") + ", with all who registered versions";
}

}  // namespace titration
