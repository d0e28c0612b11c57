#include "qellib10/store/account_changes.h"

#include <algorithm>

#include "qellib10/user/account_rights.h"

namespace qel {
namespace {

std::vector<AccountRight> RightsOf(const std::optional<CUserInfo>& record) {
    return record ? qel::RightsOf(*record) : std::vector<AccountRight>();
}

CString LevelIn(const std::vector<AccountRight>& rights, const CString& item) {
    const auto found = std::ranges::find(rights, item, &AccountRight::item);
    return found != rights.end() ? found->level : CString();
}

void AddRights(std::vector<AccountChange>& changes, const CString& account, const std::vector<AccountRight>& before,
               const std::vector<AccountRight>& after) {
    const auto add = [&](const CString& item, const CString& old, const CString& level) {
        const bool isThere = std::ranges::find(changes, item, &AccountChange::item) != changes.end();
        if (old == level || isThere) return;
        changes.push_back({AccountEvent::kRightsChanged, {}, account, item, old, level});
    };
    for (const AccountRight& right : after) add(right.item, LevelIn(before, right.item), right.level);
    for (const AccountRight& right : before) add(right.item, right.level, LevelIn(after, right.item));
}

CString NameOf(const AccountState& state) { return state.record ? state.record->GetUsername() : CString(); }
CString FullNameOf(const AccountState& state) { return state.record ? state.record->GetUserFullname() : CString(); }

}  // namespace

AccountState ReadAccountState(Database& database, const CString& username) {
    const UserId user = FindUser(database, username);
    const AutomaticLogon automatic = ReadAutomaticLogon(database);
    const auto automaticUser = ReadUser(database, automatic.user);
    return {ReadUser(database, user), ReadPassword(database, user),
            automaticUser ? automaticUser->GetUsername() : CString(), automatic.token};
}

std::vector<AccountChange> ChangesOf(const AccountState& before, const AccountState& after) {
    std::vector<AccountChange> changes;
    const CString account = after.record ? NameOf(after) : NameOf(before);
    const CString oldName = FullNameOf(before), newName = FullNameOf(after);
    if (!before.record && after.record) changes.push_back({AccountEvent::kAdded, {}, account, {}, {}, newName});
    if (before.record && !after.record) changes.push_back({AccountEvent::kRemoved, {}, account, {}, oldName, {}});
    if (before.record && after.record && oldName != newName)
        changes.push_back({AccountEvent::kRenamed, {}, account, {}, oldName, newName});
    if (after.record) AddRights(changes, account, RightsOf(before.record), RightsOf(after.record));
    if (after.password && (!before.password || before.password->salt != after.password->salt))
        changes.push_back({AccountEvent::kPasswordChanged, {}, account, {}, {}, {}});
    if (before.automaticUser != after.automaticUser || before.token != after.token)
        changes.push_back(
            {AccountEvent::kAutomaticLogonChanged, {}, {}, {}, before.automaticUser, after.automaticUser});
    return changes;
}

}  // namespace qel
