// The operations of UserStore except those about logging on, which are in user_logon.cpp.
#include "qellib10/store/user_store.h"

#include <optional>

#include "qellib10/platform/storage/private_file.h"
#include "qellib10/store/attempts.h"
#include "qellib10/store/user_store_state.h"

namespace qel {

UserStore::UserStore(const CString& path, UserStoreSettings settings)
    : m_state(std::make_unique<UserStoreState>(path, std::move(settings))) {}
UserStore::~UserStore() = default;

void UserStore::Connect() {
    if (m_state->database) return;
    m_state->ResultOf("qel::UserStore::Connect", [&] {
        m_state->Connect();
        return 1;
    });
}

int UserStore::IsConnected() { return m_state->database ? 1 : 0; }

int UserStore::CheckIntegrity() {
    return m_state->ResultOf("qel::UserStore::CheckIntegrity", [&] {
        RequireSound(m_state->Opened());
        return 1;
    });
}

int UserStore::CreateFirstAdministrator(const CString& username, const CString& password) {
    CUserInfo record;
    record.SetUsername(username);
    record.SetManagerFlag(1);
    const auto add = [&] {
        Database& database = *m_state->database;
        if (HasAdministrator(database)) throw StoreError(FailureKind::kState, "there is an administrator already");
        return AddAccount(database, record);
    };
    return m_state->ChangeAccountAndPassword("qel::UserStore::CreateFirstAdministrator", record, password,
                                             PasswordOrigin::kFirst, add);
}

int UserStore::GetUserInfo(const CString& username, CUserInfo* out) {
    if (out == nullptr) return RefuseNull("qel::UserStore::GetUserInfo");
    return m_state->ResultOf("qel::UserStore::GetUserInfo", [&] {
        const auto found = ReadUser(m_state->Opened(), m_state->Existing(username));
        if (!found) return 0;
        *out = *found;
        return 1;
    });
}

int UserStore::ReloadUserList() {
    return m_state->ResultOf("qel::UserStore::ReloadUserList", [&] {
        m_state->names = UserNames(m_state->Opened());
        return 1;
    });
}

int UserStore::GetUserCount() {
    const auto count = m_state->ResultOf("qel::UserStore::GetUserCount", [&] {
        m_state->Opened();
        return std::optional(static_cast<int>(m_state->names.size()));  // nobody is not a failure
    });
    return count.value_or(-1);
}

CString UserStore::GetUserName(int index) {
    return m_state->ResultOf("qel::UserStore::GetUserName", [&] {
        m_state->Opened();
        const auto& names = m_state->names;
        if (index < 0 || static_cast<std::size_t>(index) >= names.size())
            throw StoreError(FailureKind::kMissing, "there is no user of this number");
        return names[static_cast<std::size_t>(index)];
    });
}

int UserStore::SaveFunctionSecurity(const CUserInfo& user) {
    const auto save = [&] {
        const UserId existing = m_state->Existing(user.GetUsername());
        UpdateAccount(*m_state->database, existing, user);
        return existing;
    };
    return m_state->ChangeAccountAndPassword("qel::UserStore::SaveFunctionSecurity", user, user.GetPassword(),
                                             PasswordOrigin::kSomebodyElse, save);
}

int UserStore::AddUser(const CUserInfo& user) {
    const auto add = [&] { return AddAccount(*m_state->database, user); };
    return m_state->ChangeAccountAndPassword("qel::UserStore::AddUser", user, user.GetPassword(),
                                             PasswordOrigin::kSomebodyElse, add);
}

int UserStore::DeleteUser(const CString& username) {
    Database* const database = m_state->database.get();
    bool isAutomatic = false;
    const auto change = [&] {
        const UserId user = m_state->Existing(username);
        isAutomatic = ReadAutomaticLogon(*database).user == user;
        DeleteAccount(*database, user);
        ForgetAttempts(*database, user);
        if (m_state->settings.record) ForgetUnreported(*database, user);
    };
    return m_state->ChangeAccounts("qel::UserStore::DeleteUser", username, change, [&] {
        if (isAutomatic) RemovePrivateFile(m_state->TokenPath());
    });
}

}  // namespace qel
