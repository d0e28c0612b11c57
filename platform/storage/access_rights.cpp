#include "qellib10/platform/storage/access_rights.h"

#include <sys/stat.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"

namespace qel {

int GiveAccessRights(int file, const struct stat& pattern) {
    struct stat own = {};
    if (::fstat(file, &own) != 0) return errno;
    const bool given = (pattern.st_uid == own.st_uid && pattern.st_gid == own.st_gid) ||
                       ::fchown(file, pattern.st_uid, pattern.st_gid) == 0;
    const mode_t kept = given ? 07777 : 0777;
    return ::fchmod(file, pattern.st_mode & kept) == 0 ? 0 : errno;
}

void TakeAccessRights(std::string_view name, std::string_view pattern) {
    struct stat status = {};
    if (::stat(ToPosixPath(pattern).c_str(), &status) != 0 || (status.st_mode & 0222) == 0) return;
    const std::string posix = ToPosixPath(name);
    const Descriptor file(::open(posix.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    if (!file) ThrowErrno(errno, name, posix);
    if (const int error = GiveAccessRights(file.Get(), status)) ThrowErrno(error, name);
}

}  // namespace qel
