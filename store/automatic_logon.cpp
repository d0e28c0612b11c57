// The operations of UserStore about automatic logon.
#include <optional>

#include "qellib10/platform/crypto/secret_text.h"
#include "qellib10/platform/crypto/token.h"
#include "qellib10/platform/storage/private_file.h"
#include "qellib10/store/user_store_state.h"

namespace qel {
namespace {

constexpr std::size_t kLongestToken = 256;  // bytes of its file

}  // namespace

int UserStore::IsAutoLogon() {
    const std::optional<int> isOn = m_state->ResultOf("qel::UserStore::IsAutoLogon", [&] {
        return std::optional(ReadAutomaticLogon(m_state->Opened()).isOn);  // off is not a failure
    });
    return isOn.value_or(0);
}

int UserStore::SetAutoLogon(int autoLogon) {
    return m_state->ResultOf("qel::UserStore::SetAutoLogon", [&] {
        Database& database = m_state->Opened();
        Transaction transaction(database);
        const bool wasOn = ReadAutomaticLogon(database).isOn != 0;
        SwitchAutomaticLogon(database, autoLogon);
        if (wasOn != (autoLogon != 0))
            m_state->Report({AccountEvent::kAutomaticLogonChanged,
                             m_state->Actor(),
                             {},
                             {},
                             wasOn ? "on" : "off",
                             wasOn ? "off" : "on"});
        transaction.Commit();
        return 1;
    });
}

CString UserStore::GetAutoLogonUserName() {
    return m_state->ResultOf("qel::UserStore::GetAutoLogonUserName", [&] {
        Database& database = m_state->Opened();
        const auto user = ReadUser(database, ReadAutomaticLogon(database).user);
        return user ? user->GetUsername() : CString();
    });
}

CString UserStore::GetAutoLogonPassword() {
    return m_state->ResultOf("qel::UserStore::GetAutoLogonPassword", [&] {
        const AutomaticLogon automatic = ReadAutomaticLogon(m_state->Opened());
        const SecretText token(ReadPrivateFile(m_state->TokenPath(), kLongestToken));
        if (automatic.user == kNobody || !IsSame(DigestOf(token.View()), automatic.token))
            throw StoreError(FailureKind::kMissing, "the file does not hold the valid token");
        return CString(token.View());
    });
}

// The token's file changes last, after the entry. When that is done but the commit fails, the old token is lost: the
// logon asks then.
int UserStore::SetAutoLogonUser(const CString& username) {
    std::optional<SecretText> token;
    const auto change = [&] {
        Database& database = *m_state->database;
        if (username.IsEmpty()) return StoreAutomaticUser(database, kNobody, {});
        token.emplace(NewToken());
        StoreAutomaticUser(database, m_state->Existing(username), DigestOf(token->View()));
    };
    return m_state->ChangeAccounts("qel::UserStore::SetAutoLogonUser", username, change, [&] {
        token ? WritePrivateFile(m_state->TokenPath(), token->View()) : RemovePrivateFile(m_state->TokenPath());
    });
}

}  // namespace qel
