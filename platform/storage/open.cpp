#include "qellib10/platform/storage/open.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/same_file.h"

namespace qel {
namespace {

constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kAnyWriteBit = 0222;
constexpr int kReplacedTries = 100;  // for a file that is replaced faster than it can be opened

int OpenOnce(const std::string& path, int flags) {
    for (;;) {
        const int number = ::open(path.c_str(), flags, kNewFileMode);
        if (number >= 0 || errno != EINTR) return number;
    }
}

// An empty file is left alone: after truncating a file to 0, ext4 writes it to disk when it is closed.
int Empty(const Descriptor& file) {
    struct stat status = {};
    if (::fstat(file.Get(), &status) == 0 && status.st_size == 0) return 0;
    return ::ftruncate(file.Get(), 0);
}

bool Writes(const OpenRequest& request) { return request.mode.write || request.truncate; }

// @return the access of the descriptor, O_RDWR, O_RDONLY or O_WRONLY; without a descriptor errno says why
int OpenPlain(const std::string& path, const OpenRequest& request, Descriptor& file) {
    // A child must not inherit the file, and the open must not block on a pipe or a terminal.
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    if (request.create) flags |= O_CREAT;
    if (request.append) flags |= O_APPEND;
    if (request.writeThrough) flags |= O_DSYNC;
    const int access = Writes(request) ? O_RDWR : O_RDONLY;
    file.Reset(OpenOnce(path, flags | access));
    // Marks need a descriptor that can read; only a file that cannot be read gets one that can only write.
    if (file || errno != EACCES || !request.mode.write || request.mode.read) return access;
    file.Reset(OpenOnce(path, flags | O_WRONLY));
    return O_WRONLY;
}

// The read-only attribute is the mode without write bits and must be checked here: root passes every permission check.
bool IsOpenable(const struct stat& status, const OpenRequest& request) {
    const bool readOnly = (status.st_mode & kAnyWriteBit) == 0;
    return S_ISREG(status.st_mode) && !(readOnly && Writes(request));
}

// One try. Success without a descriptor: the file was replaced or deleted between opening and marking, so the marks
// protect nothing.
LONG TryOpen(const std::string& path, const OpenRequest& request, Descriptor& file) {
    const int access = OpenPlain(path, request, file);
    if (!file) return CodeOfErrno(errno, path);
    struct stat opened = {};
    if (::fstat(file.Get(), &opened) != 0) return CodeOfErrno(errno);
    if (!IsOpenable(opened, request)) return kAccessDenied;
    if (!ClaimShare(file.Get(), access, request.mode)) return kSharingViolation;
    if (!IsStillAt(path, opened)) CloseShared(file);
    return 0;
}

}  // namespace

OpenRequest OpenRequest::OfFlags(UINT flags) {
    const UINT access = flags & CFile::kAccessMask;
    const UINT share = flags & CFile::kShareMask;
    OpenRequest request;
    request.mode.read = access != CFile::modeWrite;
    request.mode.write = access != CFile::modeRead;
    request.mode.denyRead = share != CFile::shareDenyNone && share != CFile::shareDenyWrite;
    request.mode.denyWrite = share != CFile::shareDenyNone && share != CFile::shareDenyRead;
    request.create = (flags & CFile::modeCreate) != 0;
    request.truncate = request.create && (flags & CFile::modeNoTruncate) == 0;
    request.writeThrough = (flags & CFile::osWriteThrough) != 0;
    return request;
}

LONG TryOpenShared(const std::string& posixPath, const OpenRequest& request, Descriptor& file) {
    LONG code = 0;
    for (int tries = 0; code == 0 && !file; ++tries) {
        code = tries < kReplacedTries ? TryOpen(posixPath, request, file) : LONG{kSharingViolation};
    }
    if (code == 0 && request.truncate && Empty(file) != 0) {
        code = CodeOfErrno(errno);
        CloseShared(file);
    }
    if (code != 0) file.Reset();
    return code;
}

Descriptor OpenShared(const std::string& posixPath, const OpenRequest& request, std::string_view name) {
    Descriptor file;
    if (const LONG code = TryOpenShared(posixPath, request, file)) ThrowCode(code, name);
    return file;
}

int CloseShared(Descriptor& file, bool duplicated) noexcept {
    if (!duplicated) WithdrawShare(file.Get());
    // Whatever close returns, Linux has closed the descriptor, even after EINTR.
    return ::close(file.Release()) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace qel
