#include "qellib10/platform/storage/locked_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/storage/same_file.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr off_t kLockedByte = 0x7FFFFFFFFFF40000;  // past the marks of share modes
constexpr mode_t kNewFileMode = 0644;

// Without locks in the file system, others are not kept out.
bool Lock(const Descriptor& file) {
    struct flock lock = RecordLock(F_WRLCK, kLockedByte, 1);
    return ::fcntl(file.Get(), F_OFD_SETLK, &lock) == 0 || (errno != EAGAIN && errno != EACCES);
}

}  // namespace

Descriptor OpenLocked(const std::string& posixPath, int flags, std::string_view name, Backoff& wait) {
    flags |= O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    do {
        Descriptor file(Uninterrupted([&] { return ::open(posixPath.c_str(), flags, kNewFileMode); }));
        if (!file && errno == ENOENT && (flags & O_CREAT) == 0) return file;
        struct stat opened = {};
        if (!file || ::fstat(file.Get(), &opened) != 0) ThrowErrno(errno, name, posixPath);
        if (!S_ISREG(opened.st_mode)) ThrowCode(kAccessDenied, name);
        if (Lock(file) && IsStillAt(posixPath, opened)) return file;
    } while (wait.Again());
    ThrowCode(kLockViolation, name);
}

}  // namespace qel
