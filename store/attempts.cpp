#include "qellib10/store/attempts.h"

#include <algorithm>

namespace qel {
namespace {

// So that a sum with a time of a store never overflows.
constexpr std::chrono::seconds kLongestLock = std::chrono::years(10'000);

}  // namespace

Attempt CountAttempt(Database& database, UserId user, std::chrono::sys_seconds now, const LogonLock& rule) {
    using Time = std::chrono::sys_seconds;
    Transaction transaction(database);
    const Time end = now + std::clamp(rule.length, std::chrono::seconds(0), kLongestLock);
    std::int64_t refused = 0;
    Time lockedUntil = {};
    Query read(database, "SELECT refused, locked_until FROM attempts WHERE user = ?");
    if (read.Bind(user).Step()) {
        refused = read.Number(0);
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
    transaction.Commit();
    return {isLocked, locks};
}

void ForgetAttempts(Database& database, UserId user) {
    Query(database, "DELETE FROM attempts WHERE user = ?").Bind(user).Run();
}

}  // namespace qel
