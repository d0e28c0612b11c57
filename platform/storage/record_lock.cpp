#include "qellib10/platform/storage/record_lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace qel {

struct ::flock RecordLock(short type, std::int64_t first, std::int64_t length) {
    struct ::flock lock = {};  // the kernel refuses a process id other than 0 here
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = first;
    lock.l_len = length;
    return lock;
}

bool HasNoLocks(int error) { return error == ENOLCK || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP; }

}  // namespace qel
