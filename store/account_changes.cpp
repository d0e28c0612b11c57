#include "qellib10/store/account_changes.h"

#include <algorithm>

namespace qel {
namespace {

struct Right {
    CString item, level;
};

// Levels as they are without the privileges, in the order of the table. A function may be in it twice.
std::vector<Right> RightsOf(const std::optional<CUserInfo>& record) {
    std::vector<Right> rights;
    if (!record) return rights;
    const auto add = [&](const CString& item, int level) {
        rights.push_back({item, CString(std::string_view(std::to_string(level)))});
    };
    add("maker", record->GetMakerFlag());
    add("manager", record->GetManagerFlag());
    add("show", record->GetSecurity().GetShow());
    CFunctionSecurity levels = record->GetSecurity();
    levels.SetMakerParameter(0);
    levels.SetManagerParameter(0);
    for (int i = 0; i < levels.GetFunctionIDCount(); ++i) {
        const int id = levels.GetFunctionID(i);
        const std::string number = "function " + std::to_string(id) + ' ';
        add(CString(std::string_view(number)) + levels.GetFunctionName(id), levels.GetFunctionSecurity(id));
    }
    return rights;
}

CString LevelIn(const std::vector<Right>& rights, const CString& item) {
    const auto found = std::ranges::find(rights, item, &Right::item);
    return found != rights.end() ? found->level : CString();
}

void AddRights(std::vector<AccountChange>& changes, const CString& account, const std::vector<Right>& before,
               const std::vector<Right>& after) {
    const auto add = [&](const CString& item, const CString& old, const CString& level) {
        const bool isThere = std::ranges::find(changes, item, &AccountChange::item) != changes.end();
        if (old == level || isThere) return;
        changes.push_back({AccountEvent::kRightsChanged, {}, account, item, old, level});
    };
    for (const Right& right : after) add(right.item, LevelIn(before, right.item), right.level);
    for (const Right& right : before) add(right.item, right.level, LevelIn(after, right.item));
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
