#include "qellib10/store/attempts.h"

namespace qel {

Attempt CountAttempt(Database& database, UserId user, std::chrono::sys_seconds now, const LogonLock& rule) {
    using Time = std::chrono::sys_seconds;
    Transaction transaction(database);
    std::int64_t refused = 0;
    Time lockedUntil = {};
    Query read(database, "SELECT refused, locked_until FROM attempts WHERE user = ?");
    if (read.Bind(user).Step()) {
        refused = read.Number(0);
        lockedUntil = Time(std::chrono::seconds(read.Number(1)));
    }
    // A lock that ends too late is from before the clock was set back.
    const bool isLocked = lockedUntil > now && lockedUntil <= now + rule.length;
    const bool locks = ++refused >= rule.mostRefused && !isLocked;
    if (locks) lockedUntil = now + rule.length;
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
