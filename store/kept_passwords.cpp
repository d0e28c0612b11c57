#include "qellib10/store/kept_passwords.h"

#include <algorithm>
#include <vector>

#include "qellib10/platform/crypto/crypto_library.h"
#include "qellib10/store/store_error.h"

namespace qel {
namespace {

constexpr int kLongestHistory = 24;
constexpr std::int64_t kLatestTime = 253402300799;  // of the year 9999

constexpr const char* kTables =
    "CREATE TABLE IF NOT EXISTS passwords("
    "  user INTEGER PRIMARY KEY REFERENCES users ON DELETE CASCADE, salt BLOB NOT NULL,"
    "  set_at INTEGER NOT NULL, latest INTEGER NOT NULL, to_change INTEGER NOT NULL);"
    "CREATE TABLE IF NOT EXISTS earlier_passwords("
    "  user INTEGER NOT NULL REFERENCES users ON DELETE CASCADE, number INTEGER NOT NULL,"
    "  salt BLOB NOT NULL, hash BLOB NOT NULL, passes INTEGER NOT NULL, memory INTEGER NOT NULL,"
    "  PRIMARY KEY(user, number)) WITHOUT ROWID;";

bool HasTable(Database& database, std::string_view name) {
    Query query(database, "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?");
    return query.Bind(name).Step();
}

bool IsOne(std::string_view password, const PasswordHash& hash) {
    try {
        return IsPassword(password, hash);
    } catch (const CryptoError&) {  // of a cost that cannot be
        return false;
    }
}

// All are read first, so that no other program waits for the store while they are compared.
std::vector<PasswordHash> LastPasswords(Database& database, UserId user, int earlier) {
    std::vector<PasswordHash> last;
    if (const auto present = ReadPassword(database, user)) last.push_back(*present);
    if (earlier <= 0 || !HasTable(database, "earlier_passwords")) return last;
    Query query(database,
                "SELECT salt, hash, passes, memory FROM earlier_passwords WHERE user = ? "
                "ORDER BY number DESC LIMIT ?");
    query.Bind(user).Bind(earlier);
    while (query.Step()) {
        PasswordHash hash;
        if (!query.Bytes(0, hash.salt) || !query.Bytes(1, hash.hash)) continue;
        hash.cost = {static_cast<std::uint64_t>(query.Number(2)), static_cast<std::uint64_t>(query.Number(3))};
        last.push_back(hash);
    }
    return last;
}

std::chrono::sys_seconds Time(std::int64_t seconds) {
    if (seconds < 0 || seconds > kLatestTime)
        throw StoreError(FailureKind::kData, "a password has a time that does not exist");
    return std::chrono::sys_seconds(std::chrono::seconds(seconds));
}

}  // namespace

std::optional<PasswordDates> ReadPasswordDates(Database& database, UserId user, const PasswordHash& present) {
    if (!HasTable(database, "passwords")) return std::nullopt;
    Query query(database, "SELECT set_at, latest, to_change FROM passwords WHERE user = ? AND salt = ?");
    query.Bind(user).BindBytes(present.salt);
    if (!query.Step()) return std::nullopt;
    const std::chrono::sys_seconds set = Time(query.Number(0));
    return PasswordDates{set, std::max(set, Time(query.Number(1))), query.Number(2) != 0};
}

void StorePasswordDates(Database& database, UserId user, const PasswordHash& present, const PasswordDates& dates) {
    database.Run(kTables);
    Query replace(database, "REPLACE INTO passwords VALUES(?, ?, ?, ?, ?)");
    replace.Bind(user).BindBytes(present.salt).Bind(dates.set.time_since_epoch().count());
    replace.Bind(dates.latest.time_since_epoch().count()).Bind(dates.isToChange ? 1 : 0).Run();
}

void KeepPasswordDates(Database& database, UserId user, const PasswordHash& old, const PasswordHash& present) {
    if (!HasTable(database, "passwords")) return;
    Query update(database, "UPDATE passwords SET salt = ? WHERE user = ? AND salt = ?");
    update.BindBytes(present.salt).Bind(user).BindBytes(old.salt).Run();
}

int EarlierPasswords(const PasswordRules& rules) { return std::clamp(rules.history, 1, kLongestHistory) - 1; }

bool WasUsed(Database& database, UserId user, std::string_view password, int earlier) {
    const auto isOne = [&](const PasswordHash& hash) { return IsOne(password, hash); };
    return std::ranges::any_of(LastPasswords(database, user, earlier), isOne);
}

void KeepEarlierPassword(Database& database, UserId user, int earlier) {
    if (earlier > 0) {
        database.Run(kTables);
        Query(database,
              "REPLACE INTO earlier_passwords SELECT id, 1 + (SELECT coalesce(max(number), 0) FROM earlier_passwords "
              "WHERE user = users.id), salt, hash, passes, memory FROM users WHERE id = ? AND hash IS NOT NULL "
              "AND salt IS NOT NULL AND passes IS NOT NULL AND memory IS NOT NULL")
            .Bind(user)
            .Run();
    } else if (!HasTable(database, "earlier_passwords")) {
        return;
    }
    Query(database,
          "DELETE FROM earlier_passwords WHERE user = ?1 AND number NOT IN (SELECT number FROM earlier_passwords "
          "WHERE user = ?1 ORDER BY number DESC LIMIT ?2)")
        .Bind(user)
        .Bind(earlier)
        .Run();
}

}  // namespace qel
