// How passwords are checked and set: the operations of UserStore about them, and the steps of others.
#include <algorithm>
#include <optional>

#include "qellib10/platform/crypto/secret_text.h"
#include "qellib10/platform/crypto/token.h"
#include "qellib10/platform/text/secret_utf8.h"
#include "qellib10/store/logon_turn.h"
#include "qellib10/store/user_store_state.h"

namespace qel {
namespace {

bool IsToken(Database& database, UserId user, std::string_view password) {
    const AutomaticLogon automatic = ReadAutomaticLogon(database);
    return IsSame(DigestOf(password), automatic.token) && automatic.user == user && user != kNobody;
}

bool NeedDates(const PasswordRules& rules) {
    return rules.greatestAge.count() > 0 || rules.leastAge.count() > 0 || rules.mustChangeAtFirstUse;
}

bool IsCompared(const PasswordRules& rules, PasswordOrigin origin) {
    return rules.history > 0 || origin == PasswordOrigin::kUser;
}

// Each one that is set has another salt.
bool IsSamePassword(const std::optional<PasswordHash>& one, const std::optional<PasswordHash>& other) {
    return one && other ? one->salt == other->salt : one.has_value() == other.has_value();
}

const char* ReasonFor(LogonStatus status) {
    switch (status) {
        case LogonStatus::kPasswordExpired:
            return "by its user, since it has expired";
        case LogonStatus::kPasswordToChange:
            return "by its user, at its first use";
        default:
            return "by its user";
    }
}

}  // namespace

// Every name and password goes the same way, so that the time shows nothing about who has an account or is locked.
PasswordCheck UserStoreState::Check(const CString& username, std::string_view password) const {
    PasswordCheck check{.user = FindUser(*database, username), .isCounted = true};
    if (settings.record) ReportInterrupted(check.user);
    check.attempt = CountAttempt(*database, check.user, Now(), settings.lock, settings.record != nullptr);
    check.present = ReadPassword(*database, check.user);
    const PasswordHash decoy{.cost = HighestCost(*database, settings.cost)};
    check.isToken = IsToken(*database, check.user, password);
    check.isPassword =
        !check.isToken && IsPassword(password, check.present ? *check.present : decoy) && check.present.has_value();
    return check;
}

void UserStoreState::TakeBackAttempt(UserId user) const {
    Transaction transaction(*database);
    ForgetAttempts(*database, user);
    if (settings.record) ForgetUnreported(*database, user);
    transaction.Commit();
}

std::optional<CUserInfo> UserStoreState::StillRight(const PasswordCheck& check, std::string_view password) const {
    const std::optional<PasswordHash> present = ReadPassword(*database, check.user);
    const bool isRight =
        check.isToken ? IsToken(*database, check.user, password) : present && IsSamePassword(present, check.present);
    return isRight ? ReadUser(*database, check.user) : std::nullopt;
}

std::chrono::sys_seconds UserStoreState::Now() const {
    using namespace std::chrono;
    constexpr sys_seconds kFirst = {}, kLast = sys_days(year(9999) / 12 / 31);
    return std::clamp(settings.clock(), kFirst, kLast);
}

// Each failure of this is on the safe side: a clock that was wrong costs a change of the password, and then all is
// well.
LogonStatus UserStoreState::StatusOf(const PasswordDates& dates) const {
    const PasswordRules& rules = settings.passwords;
    if (rules.mustChangeAtFirstUse && dates.isToChange) return LogonStatus::kPasswordToChange;
    if (rules.greatestAge.count() <= 0) return LogonStatus::kLoggedOn;
    const std::chrono::sys_seconds now = Now();
    const bool isExpired = dates.set > now || std::max(now, dates.latest) - dates.set > rules.greatestAge;
    return isExpired ? LogonStatus::kPasswordExpired : LogonStatus::kLoggedOn;
}

LogonStatus UserStoreState::StatusOf(UserId user) const {
    if (!NeedDates(settings.passwords)) return LogonStatus::kLoggedOn;
    const bool grows = settings.passwords.greatestAge.count() > 0;
    const std::chrono::sys_seconds now = Now();
    Transaction transaction(*database);
    const std::optional<PasswordHash> present = ReadPassword(*database, user);
    if (!present) return LogonStatus::kLoggedOn;
    const std::optional<PasswordDates> known = ReadPasswordDates(*database, user, *present);
    if (!known && !grows) return LogonStatus::kLoggedOn;
    PasswordDates dates = known.value_or(PasswordDates{now, now});
    const LogonStatus status = StatusOf(dates);
    dates.latest = std::max(dates.latest, now);
    if (grows) StorePasswordDates(*database, user, *present, dates);
    transaction.Commit();
    return status;
}

PasswordFault UserStoreState::FaultOf(UserId user, const CUserInfo& account, const CString& password,
                                      PasswordOrigin origin) const {
    const PasswordRules& rules = settings.passwords;
    const PasswordFault form = FindPasswordFault(rules, account.GetUsername(), account.GetUserFullname(), password);
    if (form != PasswordFault::kNone) return form;
    const std::optional<PasswordHash> present = ReadPassword(*database, user);
    if (origin == PasswordOrigin::kUser && rules.leastAge.count() > 0 && present) {
        const std::optional<PasswordDates> dates = ReadPasswordDates(*database, user, *present);
        const bool isFresh = dates && StatusOf(*dates) == LogonStatus::kLoggedOn && dates->set <= Now() &&
                             Now() - dates->set < rules.leastAge;
        if (isFresh) return PasswordFault::kTooEarly;
    }
    if (!IsCompared(rules, origin)) return PasswordFault::kNone;
    const SecretText text(SecretToUtf8(password.View()));
    const bool wasUsed = WasUsed(*database, user, text.View(), EarlierPasswords(rules));
    return wasUsed ? PasswordFault::kUsedBefore : PasswordFault::kNone;
}

NewPassword UserStoreState::Prepare(UserId user, const CUserInfo& account, const CString& password,
                                    PasswordOrigin origin) const {
    NewPassword made{.compared = ReadPassword(*database, user)};
    made.fault = FaultOf(user, account, password, origin);
    if (made.fault != PasswordFault::kNone) return made;
    const SecretText text(SecretToUtf8(password.View()));
    made.hash = HashPassword(text.View(), settings.cost);
    return made;
}

void UserStoreState::SetPassword(UserId user, const NewPassword& made, PasswordOrigin origin) {
    passwordFault = made.fault;
    if (made.fault != PasswordFault::kNone) {
        const CString account = ReadUser(*database, user).value_or(CUserInfo()).GetUsername();
        Report({.event = AccountEvent::kPasswordRefused,
                .user = origin == PasswordOrigin::kUser ? account : Actor(),
                .account = account,
                .reason = PasswordFaultText(made.fault)});
        throw StoreError(made.fault == PasswordFault::kImpossible ? FailureKind::kArgument : FailureKind::kRefused,
                         PasswordFaultText(made.fault));
    }
    const PasswordRules& rules = settings.passwords;
    const std::optional<PasswordHash> present = ReadPassword(*database, user);
    if (IsCompared(rules, origin) && !IsSamePassword(present, made.compared))
        throw StoreError(FailureKind::kState, "another program has changed the password meanwhile");
    if (rules.history > 0) KeepEarlierPassword(*database, user, EarlierPasswords(rules));
    StorePassword(*database, user, made.hash);
    if (NeedDates(rules))
        StorePasswordDates(*database, user, made.hash, {Now(), Now(), origin == PasswordOrigin::kSomebodyElse});
    ForgetAttempts(*database, user);
}

int UserStore::ChangePassword(const CString& username, const CString& password, const CString& newPassword) {
    m_state->passwordFault = PasswordFault::kNone;
    return m_state->ResultOf("qel::UserStore::ChangePassword", [&] {
        Database& database = m_state->Opened();
        if (m_state->settings.isReadOnly) throw StoreError(FailureKind::kState, "the user store is read only");
        const auto refuse = [&](const PasswordCheck& check) {
            m_state->passwordFault = PasswordFault::kNotVerified;
            return m_state->RefuseAttempt(AccountEvent::kPasswordRefused, check,
                                          PasswordFaultText(PasswordFault::kNotVerified));
        };
        if (FindPasswordFault({}, username, {}, password) != PasswordFault::kNone)
            return refuse({.user = FindUser(database, username)});
        const SecretText text(SecretToUtf8(password.View()));
        const LogonTurn turn(m_state->StorePath(), FoldedName(username));
        const PasswordCheck check = m_state->Check(username, text.View());
        if (!check.isPassword || !check.IsRight()) return refuse(check);
        m_state->TakeBackAttempt(check.user);
        const LogonStatus status = m_state->StatusOf(check.user);
        const CUserInfo record = ReadUser(database, check.user).value_or(CUserInfo());
        const CString& account = record.GetUsername();
        const NewPassword made = m_state->Prepare(check.user, record, newPassword, PasswordOrigin::kUser);
        Transaction transaction(database);
        if (!IsSamePassword(ReadPassword(database, check.user), check.present)) return refuse({.user = check.user});
        m_state->SetPassword(check.user, made, PasswordOrigin::kUser);
        m_state->Report({.event = AccountEvent::kPasswordChanged,
                         .user = account,
                         .account = account,
                         .reason = ReasonFor(status)});
        transaction.Commit();
        return 1;
    });
}

PasswordFault UserStore::GetPasswordFault() const { return m_state->passwordFault; }

}  // namespace qel
