#include "qellib10/platform/storage/locked_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr off_t kLockedByte = 0x7FFFFFFFFFF40000;  // behind the marks of share modes

// @return 0 or the errno
int Lock(int file) {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kLockedByte;
    lock.l_len = 1;
    return ::fcntl(file, F_OFD_SETLK, &lock) == 0 ? 0 : errno;
}

// A file system that knows no locks keeps nobody out.
bool IsHeld(int error) { return error == EAGAIN || error == EACCES; }

}  // namespace

Descriptor OpenLocked(const std::string& posixPath, std::string_view name) {
    Descriptor file(
        Uninterrupted([&] { return ::open(posixPath.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
    if (!file && errno == ENOENT) return file;
    struct stat opened = {};
    struct stat now = {};
    if (!file || ::fstat(file.Get(), &opened) != 0) ThrowErrno(errno, name, posixPath);
    if (!S_ISREG(opened.st_mode)) ThrowCode(kAccessDenied, name);
    if (IsHeld(Lock(file.Get()))) ThrowCode(kLockViolation, name);
    const bool stillThere =
        ::stat(posixPath.c_str(), &now) == 0 && now.st_dev == opened.st_dev && now.st_ino == opened.st_ino;
    if (!stillThere) ThrowCode(kLockViolation, name);
    return file;
}

}  // namespace qel
