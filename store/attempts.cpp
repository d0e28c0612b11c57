#include "qellib10/store/attempts.h"

#include <algorithm>
#include <limits>

namespace qel {
namespace {

// So that a sum with a time of a store never overflows.
constexpr std::chrono::seconds kLongestLock = std::chrono::years(10'000);
constexpr std::int64_t kMostCounted = std::numeric_limits<int>::max();  // LogonLock has no larger number

constexpr const char* kTable =
    "CREATE TABLE IF NOT EXISTS unreported_attempts(user INTEGER PRIMARY KEY, locks INTEGER NOT NULL);";

}  // namespace

Attempt CountAttempt(Database& database, UserId user, std::chrono::sys_seconds now, const LogonLock& rule,
                     bool isReported) {
    using Time = std::chrono::sys_seconds;
    Transaction transaction(database);
    const Time end = now + std::clamp(rule.length, std::chrono::seconds(0), kLongestLock);
    std::int64_t refused = 0;
    Time lockedUntil = {};
    Query read(database, "SELECT refused, locked_until FROM attempts WHERE user = ?");
    if (read.Bind(user).Step()) {
        refused = std::clamp(read.Number(0), std::int64_t{0}, kMostCounted);
        lockedUntil = Time(std::chrono::seconds(read.Number(1)));
    }
    // A lock that ends too late is from before the clock was set back.
    const bool isLocked = lockedUntil > now && lockedUntil <= end;
    const bool locks = ++refused >= rule.mostRefused && !isLocked;
    if (locks) lockedUntil = end;
    Query(database, "REPLACE INTO attempts VALUES(?, ?, ?)")
        .Bind(user)
        .Bind(refused)
        .Bind(lockedUntil.time_since_epoch().count())
        .Run();
    if (isReported) {
        database.Run(kTable);
        Query(database, "REPLACE INTO unreported_attempts VALUES(?, ?)").Bind(user).Bind(locks ? 1 : 0).Run();
    }
    transaction.Commit();
    return {isLocked, locks};
}

std::optional<Attempt> UnreportedAttempt(Database& database, UserId user) {
    database.Run(kTable);
    Query query(database, "SELECT locks FROM unreported_attempts WHERE user = ?");
    return query.Bind(user).Step() ? std::optional(Attempt{.locks = query.Number(0) != 0}) : std::nullopt;
}

void ForgetUnreported(Database& database, UserId user) {
    database.Run(kTable);
    Query(database, "DELETE FROM unreported_attempts WHERE user = ?").Bind(user).Run();
}

void ForgetAttempts(Database& database, UserId user) {
    Query(database, "DELETE FROM attempts WHERE user = ?").Bind(user).Run();
}

}  // namespace qel
