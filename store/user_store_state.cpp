#include "qellib10/store/user_store_state.h"

#include <utility>

#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/private_file.h"

namespace qel {
namespace {

// Deleted accounts and passwords are overwritten.
std::unique_ptr<Database> OpenDatabase(const std::string& posixPath, bool isReadOnly) {
    // Made here for its mode, which the journal takes over. An existing file is not opened: closing it again would drop
    // the locks of another connection in this process.
    if (!isReadOnly) MakePrivateFile(posixPath);
    auto database =
        std::make_unique<Database>(posixPath, isReadOnly ? DatabaseOpening::kReading : DatabaseOpening::kExisting);
    database->Run("PRAGMA secure_delete = ON");
    return database;
}

FailureKind KindOf(DatabaseFault fault) {
    switch (fault) {
        case DatabaseFault::kForeignKey:
        case DatabaseFault::kDamaged:
            return FailureKind::kData;
        case DatabaseFault::kValue:
            return FailureKind::kArgument;  // a name or an ID that another user has
        default:
            return FailureKind::kFile;
    }
}

}  // namespace

void FailedBy(Operation& operation, const DatabaseError& failure, const CString& path) noexcept {
    operation.Failed(KindOf(failure.Fault()), path.View(), failure.what());
}

void UserStoreState::Connect() {
    auto opened = OpenDatabase(StorePath(), settings.isReadOnly);
    settings.isReadOnly ? RequireTables(*opened) : PrepareTables(*opened);
    names = UserNames(*opened);
    database = std::move(opened);
}

Database& UserStoreState::Opened() const {
    if (!database) throw StoreError(FailureKind::kState, "the user store is not connected");
    return *database;
}

void UserStoreState::Report(AccountEvent event, const CString& account) const { Report({event, Actor(), account}); }

void UserStoreState::Report(const AccountChange& change) const {
    if (!settings.record || settings.record(change)) return;
    const std::string why = LastFailure().text;
    throw StoreError(FailureKind::kState, "it could not be recorded" + (why.empty() ? "" : ": " + why));
}

void UserStoreState::EndLogon() {
    const UserId leaving = std::exchange(logonUser, kNobody);
    const auto account = ReadUser(Opened(), leaving);
    if (account && account->GetUsername() == logonName) Report(AccountEvent::kLogout, logonName);
}

void UserStoreState::ReportInterrupted(UserId user) const {
    const std::optional<Attempt> left = user != kNobody ? UnreportedAttempt(*database, user) : std::nullopt;
    if (left)
        RefuseAttempt(AccountEvent::kLogonRefused, {.user = user, .attempt = *left, .isCounted = true},
                      "an earlier attempt that was not recorded");
}

// The name that was typed may be the password.
int UserStoreState::RefuseAttempt(AccountEvent event, const PasswordCheck& check, const CString& reason) const {
    const auto known = ReadUser(*database, check.user);
    const CString account = known ? known->GetUsername() : CString();
    Report({.event = event, .user = Actor(), .account = account, .reason = reason});
    if (check.attempt.locks && known) Report(AccountEvent::kLocked, account);
    if (check.isCounted && settings.record) ForgetUnreported(*database, check.user);
    return 0;
}

std::optional<CUserInfo> UserStoreState::LoggedOn() const {
    auto user = ReadUser(Opened(), logonUser);
    if (user && user->GetUsername() != logonName) user.reset();
    return user;
}

CString UserStoreState::Actor() const { return LoggedOn().value_or(CUserInfo()).GetUsername(); }

UserId UserStoreState::Existing(const CString& username) const {
    const UserId user = FindUser(Opened(), username);
    if (user == kNobody) throw StoreError(FailureKind::kMissing, "there is no such user");
    return user;
}

std::string UserStoreState::StorePath() const { return ToPosixPath(path.View()); }

}  // namespace qel
