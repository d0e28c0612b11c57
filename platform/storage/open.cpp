#include "qellib10/platform/storage/open.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_error.h"

namespace qel {
namespace {

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kAnyWriteBit = 0222;

int OpenOnce(const std::string& path, int flags) {
    for (;;) {
        const int descriptor = ::open(path.c_str(), flags, kNewFileMode);
        if (descriptor >= 0 || errno != EINTR) return descriptor;
    }
}

}  // namespace

Descriptor OpenFile(const std::string& posixPath, UINT flags, std::string_view name) {
    const UINT access = flags & CFile::kAccessMask;
    const bool create = (flags & CFile::modeCreate) != 0;
    const bool empty = create && (flags & CFile::modeNoTruncate) == 0;
    const bool write = access != CFile::modeRead;

    // A child must not inherit a file, and neither a pipe nor a terminal may hold the opening up.
    int system = O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (create ? O_CREAT : 0);
    if ((flags & CFile::osWriteThrough) != 0) system |= O_DSYNC;
    Descriptor descriptor(OpenOnce(posixPath, system | (write || empty ? O_RDWR : O_RDONLY)));
    // The object's access decides what may be done, not the descriptor's; only a file that cannot be read needs this.
    if (!descriptor && errno == EACCES && access == CFile::modeWrite)
        descriptor = Descriptor(OpenOnce(posixPath, system | O_WRONLY));
    if (!descriptor) ThrowErrno(errno, name, posixPath);

    struct stat status {};
    if (::fstat(descriptor.Get(), &status) != 0) ThrowErrno(errno, name, posixPath);
    // By the mode bits, not by trying: the system lets root pass every permission test.
    const bool readOnly = (status.st_mode & kAnyWriteBit) == 0;
    if (!S_ISREG(status.st_mode) || (readOnly && (write || empty))) ThrowCode(kAccessDenied, name);
    if (empty && ::ftruncate(descriptor.Get(), 0) != 0) ThrowErrno(errno, name, posixPath);
    return descriptor;
}

}  // namespace qel
