#pragma once

#include <cstdint>

struct flock;

namespace qel {

/// What the commands F_OFD_SETLK, F_OFD_SETLKW and F_OFD_GETLK of fcntl work on: @p length bytes from @p first on.
/// @param type F_RDLCK, F_WRLCK or F_UNLCK
struct ::flock RecordLock(short type, std::int64_t first, std::int64_t length);

/// Whether the errno of such a command says that the file system has no locks.
bool HasNoLocks(int error);

}  // namespace qel
