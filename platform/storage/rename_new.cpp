#include "qellib10/platform/storage/rename_new.h"

#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>

namespace qel {

int RenameNew(const std::string& source, const std::string& target) {
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    if (::link(source.c_str(), target.c_str()) != 0) return errno;
    if (::unlink(source.c_str()) == 0) return 0;
    const int error = errno;
    ::unlink(target.c_str());
    return error;
}

}  // namespace qel
