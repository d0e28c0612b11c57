#include "user_store.h"

#include <optional>
#include <utility>

#include "logon_turn.h"
#include "store_error.h"
#include "token_file.h"

namespace userstore {
namespace {

constexpr int kMostAsked = 3;
constexpr int kLongestPassword = 1024;  // bytes

void RequirePassword(const CString& password) {
    if (password.IsEmpty() || password.GetLength() > kLongestPassword) throw StoreError("this cannot be a password");
}

}  // namespace

// The one place where what failed becomes an answer.
template <class Body> auto UserStore::Answer(Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const StoreError& error) {
        m_lastError = error.what();
    } catch (const CFileException& error) {
        m_lastError = error.what();
    }
    return {};
}

UserStore::UserStore(const CString& path, UserStoreSettings settings) : m_path(path), m_settings(std::move(settings)) {}

void UserStore::Connect() {
    if (m_database) return;
    Answer([&] {
        auto database = std::make_unique<Database>(StorePath(), m_settings.isReadOnly);
        m_settings.isReadOnly ? RequireTables(*database) : PrepareTables(*database);
        m_names = UserNames(*database);
        m_database = std::move(database);
        return 1;
    });
}

int UserStore::IsConnected() { return m_database ? 1 : 0; }

int UserStore::CheckIntegrity() {
    return Answer([&] {
        RequireSound(Opened());
        return 1;
    });
}

Database& UserStore::Opened() const {
    if (!m_database) throw StoreError("the user store is not connected");
    return *m_database;
}

UserId UserStore::Existing(const CString& username) const {
    const UserId user = FindUser(Opened(), username);
    if (user == kNobody) throw StoreError("there is no such user");
    return user;
}

std::string UserStore::StorePath() const { return qel::ToPosixPath(m_path.View()); }
std::string UserStore::TokenPath() const { return StorePath() + ".token"; }

// All of @p change takes place or nothing. A store that has an administrator keeps one. @p last is what cannot be taken
// back, and done when nothing else is left to fail but the commit.
template <class Change> int UserStore::ChangeAccounts(Change change, const std::function<void()>& last) {
    return Answer([&] {
        Transaction transaction(Opened());
        const bool hadAdministrator = HasAdministrator(*m_database);
        change();
        if (hadAdministrator && !HasAdministrator(*m_database))
            throw StoreError("nobody would be left to administrate");
        last();
        transaction.Commit();
        m_names = UserNames(*m_database);
        return 1;
    });
}

void UserStore::SetPassword(UserId user, const CString& password) {
    RequirePassword(password);
    StorePassword(*m_database, user, HashPassword(qel::ToUtf8(password.View()), m_settings.cost));
    ForgetAttempts(*m_database, user);
}

int UserStore::CreateFirstAdministrator(const CString& username, const CString& password) {
    return ChangeAccounts([&] {
        if (HasAdministrator(*m_database)) throw StoreError("there is an administrator already");
        CUserInfo record;
        record.SetUsername(username);
        record.SetManagerFlag(1);
        SetPassword(userstore::AddUser(*m_database, record), password);
    });
}

int UserStore::LogonWithDialog() {
    if (!m_prompt || !m_database) return 0;
    for (LogonRequest request; request.refused < kMostAsked && m_prompt(request); ++request.refused) {
        if (Logon(request.username, request.password) != 0) return 1;
        request.password.Empty();
    }
    return 0;
}

// Every name and password goes the same way, so that time tells nothing about who has an account or is locked.
int UserStore::Logon(const CString& username, const CString& password) {
    return Answer([&] {
        Database& database = Opened();
        if (m_settings.isReadOnly) throw StoreError("the user store is read only");
        if (password.IsEmpty() || password.GetLength() > kLongestPassword) return 0;
        const std::string text = qel::ToUtf8(password.View());
        const LogonTurn turn(StorePath(), FoldedName(username));
        const UserId user = FindUser(database, username);
        const bool isLocked = CountAttempt(database, user, m_settings.clock(), m_settings.lock);
        const std::optional<PasswordHash> kept = ReadPassword(database, user);
        const PasswordHash decoy{.cost = m_settings.cost};
        const bool isToken = IsToken(user, text);
        const bool isPassword = !isToken && IsPassword(text, kept ? *kept : decoy) && kept;
        if ((!isToken && !isPassword) || isLocked) return 0;
        if (isPassword && kept->cost != m_settings.cost) HashAgain(user, *kept, text);
        ForgetAttempts(database, user);
        m_logonUser = user;
        return 1;
    });
}

void UserStore::HashAgain(UserId user, const PasswordHash& old, const std::string& password) {
    const PasswordHash hash = HashPassword(password, m_settings.cost);
    Transaction transaction(*m_database);
    const std::optional<PasswordHash> kept = ReadPassword(*m_database, user);
    if (!kept || kept->salt != old.salt) return;  // another program has set another password meanwhile
    StorePassword(*m_database, user, hash);
    transaction.Commit();
}

bool UserStore::IsToken(UserId user, const std::string& password) const {
    const AutomaticLogon automatic = ReadAutomaticLogon(*m_database);
    return IsSame(DigestOf(password), automatic.token) && automatic.user == user && user != kNobody;
}

void UserStore::GetLogonUser(CUserInfo* out) {
    if (out == nullptr) return;
    *out = Answer([&] { return ReadUser(Opened(), m_logonUser).value_or(CUserInfo()); });
}

CString UserStore::GetLogonUsername() {
    CUserInfo user;
    GetLogonUser(&user);
    return user.GetUsername();
}

int UserStore::IsAutoLogon() {
    return Answer([&] { return ReadAutomaticLogon(Opened()).isOn; });
}

int UserStore::SetAutoLogon(int autoLogon) {
    return Answer([&] {
        SwitchAutomaticLogon(Opened(), autoLogon);
        return 1;
    });
}

CString UserStore::GetAutoLogonUserName() {
    return Answer([&] {
        const auto user = ReadUser(Opened(), ReadAutomaticLogon(Opened()).user);
        return user ? user->GetUsername() : CString();
    });
}

CString UserStore::GetAutoLogonPassword() {
    return Answer([&] {
        const AutomaticLogon automatic = ReadAutomaticLogon(Opened());
        const std::string token = ReadToken(TokenPath());
        const bool isValid = automatic.user != kNobody && IsSame(DigestOf(token), automatic.token);
        return isValid ? CString(std::string_view(token)) : CString();
    });
}

int UserStore::SetAutoLogonUser(const CString& username) {
    return ChangeAccounts([&] {
        if (username.IsEmpty()) {
            StoreAutomaticUser(*m_database, kNobody, {});
            RemoveToken(TokenPath());
            return;
        }
        // When the file is written but the change fails, the old token is lost: the logon asks then.
        const std::string token = NewToken();
        StoreAutomaticUser(*m_database, Existing(username), DigestOf(token));
        WriteToken(TokenPath(), token);
    });
}

int UserStore::GetUserInfo(const CString& username, CUserInfo* out) {
    if (out == nullptr) return 0;
    return Answer([&] {
        const auto found = ReadUser(Opened(), Existing(username));
        if (!found) return 0;
        *out = *found;
        return 1;
    });
}

int UserStore::ReloadUserList() {
    return Answer([&] {
        m_names = UserNames(Opened());
        return 1;
    });
}

int UserStore::GetUserCount() { return m_database ? static_cast<int>(m_names.size()) : -1; }

CString UserStore::GetUserName(int index) {
    return index >= 0 && index < GetUserCount() ? m_names[static_cast<std::size_t>(index)] : CString();
}

int UserStore::SaveFunctionSecurity(const CUserInfo& user) {
    return ChangeAccounts([&] {
        const UserId existing = Existing(user.GetUsername());
        UpdateUser(*m_database, existing, user);
        if (!user.GetPassword().IsEmpty()) SetPassword(existing, user.GetPassword());
    });
}

int UserStore::AddUser(const CUserInfo& user) {
    return ChangeAccounts([&] {
        const UserId added = userstore::AddUser(*m_database, user);
        if (!user.GetPassword().IsEmpty()) SetPassword(added, user.GetPassword());
    });
}

int UserStore::DeleteUser(const CString& username) {
    bool isAutomatic = false;
    const auto change = [&] {
        const UserId user = Existing(username);
        isAutomatic = ReadAutomaticLogon(*m_database).user == user;
        userstore::DeleteUser(*m_database, user);
        ForgetAttempts(*m_database, user);
    };
    return ChangeAccounts(change, [&] {
        if (isAutomatic) RemoveToken(TokenPath());
    });
}

}  // namespace userstore
