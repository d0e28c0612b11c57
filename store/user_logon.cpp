// The operations of UserStore about logging on.
#include <optional>
#include <utility>

#include "qellib10/platform/crypto/secret_text.h"
#include "qellib10/platform/text/secret_utf8.h"
#include "qellib10/store/attempts.h"
#include "qellib10/store/logon_turn.h"
#include "qellib10/store/user_store_state.h"

namespace qel {
namespace {

constexpr int kMaximumPrompts = 3;

// Returns what is stored then; the old one if another program has set another password meanwhile.
PasswordHash HashAgain(Database& database, UserId user, const PasswordHash& old, std::string_view password,
                       const PasswordCost& cost) {
    if (old.cost == cost) return old;
    const PasswordHash hash = HashPassword(password, cost);
    Transaction transaction(database);
    const std::optional<PasswordHash> kept = ReadPassword(database, user);
    if (!kept || kept->salt != old.salt) return old;
    StorePassword(database, user, hash);
    KeepPasswordDates(database, user, old, hash);
    transaction.Commit();
    return hash;
}

bool IsToChange(LogonStatus status) {
    return status == LogonStatus::kPasswordExpired || status == LogonStatus::kPasswordToChange;
}

// As SecretText: what a dialog has filled in does not stay in memory that is given back.
void Wipe(CString& secret) {
    const int size = secret.GetLength();
    WipeSecret(secret.GetBuffer(size), static_cast<std::size_t>(size));
    secret.ReleaseBuffer(0);
}

struct WipedRequest : LogonRequest {
    WipedRequest() = default;
    ~WipedRequest() {
        Wipe(password);
        Wipe(newPassword);
    }
    WipedRequest(const WipedRequest&) = delete;
    WipedRequest& operator=(const WipedRequest&) = delete;
};

// Only now, since the password was right: others do not learn that it has expired.
void RequireNoChange(UserStoreState& state, const PasswordCheck& check) {
    const LogonStatus status = state.StatusOf(check.user);
    if (!IsToChange(status)) return;
    const char* const why = status == LogonStatus::kPasswordExpired ? "the password has expired"
                                                                    : "the password has to be changed at its first use";
    state.RefuseAttempt(AccountEvent::kLogonRefused, {.user = check.user}, why);
    state.logonStatus = status;
    throw StoreError(FailureKind::kRefused, why);
}

}  // namespace

void UserStore::SetLogonPrompt(LogonPrompt prompt) { m_state->prompt = std::move(prompt); }

int UserStore::LogonWithDialog() {
    Operation running("qel::UserStore::LogonWithDialog");
    const LogonPrompt& prompt = m_state->prompt;
    const auto hasLeft = [&] { return m_state->logonUser == kNobody || Logout() != 0; };  // as a refused logon does
    if (!prompt || !m_state->database)
        return hasLeft() ? running.Failed(FailureKind::kState, m_state->path.View(),
                                          "no prompt is set, or no store is connected")
                         : running.Ended(0);
    bool wasToChange = false;  // the dialog was asked for a new password, which begins the count again, once
    for (WipedRequest request; request.refused < kMaximumPrompts;) {
        if (!prompt(request))
            return hasLeft() ? running.Failed(FailureKind::kRefused, "", "cancelled") : running.Ended(0);
        if (!request.newPassword.IsEmpty() &&
            ChangePassword(request.username, request.password, request.newPassword) == 0) {
            request.fault = GetPasswordFault();
        } else {
            const CString& password = request.newPassword.IsEmpty() ? request.password : request.newPassword;
            if (Logon(request.username, password) != 0) return running.Ended(1);
            request.fault = PasswordFault::kNone;
            request.status = m_state->logonStatus;
        }
        Wipe(request.newPassword);
        if (!IsToChange(request.status)) Wipe(request.password);
        const bool isFirst = IsToChange(request.status) && !std::exchange(wasToChange, true);
        request.refused = isFirst ? 0 : request.refused + 1;
    }
    hasLeft();  // where each attempt was a change of the password
    return running.Ended(0);
}

int UserStore::Logon(const CString& username, const CString& password) {
    m_state->logonStatus = LogonStatus::kNone;
    return m_state->ResultOf("qel::UserStore::Logon", [&] {
        Database& database = m_state->Opened();
        const UserStoreSettings& settings = m_state->settings;
        if (settings.isReadOnly) throw StoreError(FailureKind::kState, "the user store is read only");
        m_state->EndLogon();  // also where this one fails: else changes would be entered for whoever has left
        const auto refuse = [&](const PasswordCheck& check) {
            m_state->logonStatus = LogonStatus::kRefused;
            return m_state->RefuseAttempt(AccountEvent::kLogonRefused, check);
        };
        if (FindPasswordFault({}, username, {}, password) != PasswordFault::kNone)
            return refuse({.user = FindUser(database, username)});
        const SecretText text(SecretToUtf8(password.View()));
        const LogonTurn turn(m_state->StorePath(), FoldedName(username));
        PasswordCheck check = m_state->Check(username, text.View());
        if (!check.IsRight()) return refuse(check);
        if (check.isPassword)
            check.present = HashAgain(database, check.user, *check.present, text.View(), settings.cost);
        m_state->TakeBackAttempt(check.user);
        if (check.isPassword) RequireNoChange(*m_state, check);
        Transaction transaction(database);  // a reset or deletion is either seen here, or entered after this logon
        const std::optional<CUserInfo> account = m_state->StillRight(check, text.View());
        if (!account) return refuse({.user = check.user});
        m_state->Report(AccountEvent::kLogon, account->GetUsername());
        transaction.Commit();
        m_state->logonUser = check.user;
        m_state->logonName = account->GetUsername();
        m_state->logonStatus = LogonStatus::kLoggedOn;
        return 1;
    });
}

LogonStatus UserStore::GetLogonStatus() const { return m_state->logonStatus; }

int UserStore::Logout() {
    return m_state->ResultOf("qel::UserStore::Logout", [&] {
        m_state->Opened();
        m_state->EndLogon();
        return 1;
    });
}

void UserStore::GetLogonUser(CUserInfo* out) {
    if (out == nullptr) return;
    *out = m_state->ResultOf("qel::UserStore::GetLogonUser", [&] { return m_state->LoggedOn().value_or(CUserInfo()); });
}

CString UserStore::GetLogonUsername() {
    Operation running("qel::UserStore::GetLogonUsername");
    CUserInfo user;
    GetLogonUser(&user);
    running.TakeOver();
    return user.GetUsername();
}

}  // namespace qel
