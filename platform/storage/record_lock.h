#pragma once

#include <cstdint>

struct flock;

namespace qel {

/// The argument of the fcntl commands F_OFD_SETLK, F_OFD_SETLKW and F_OFD_GETLK: @p length bytes from @p first.
/// @param type F_RDLCK, F_WRLCK or F_UNLCK
struct ::flock RecordLock(short type, std::int64_t first, std::int64_t length);

/// Whether the errno of such a command means that the file system has no locks.
bool HasNoLocks(int error);

}  // namespace qel
