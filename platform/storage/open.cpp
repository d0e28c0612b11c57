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
constexpr int kReplacedTries = 100;  // a file that is replaced faster than it can be opened

int OpenOnce(const std::string& path, int flags) {
    for (;;) {
        const int number = ::open(path.c_str(), flags, kNewFileMode);
        if (number >= 0 || errno != EINTR) return number;
    }
}

// An empty file is left alone: cutting a file to nothing makes ext4 write it out at its close.
int Empty(const Descriptor& file) {
    struct stat status = {};
    if (::fstat(file.Get(), &status) == 0 && status.st_size == 0) return 0;
    return ::ftruncate(file.Get(), 0);
}

bool Writes(const OpenRequest& request) { return request.mode.write || request.truncate; }

Descriptor OpenPlain(const std::string& path, const OpenRequest& request, std::string_view name) {
    // A child must not inherit a file, and neither a pipe nor a terminal may hold the opening up.
    int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    if (request.create) flags |= O_CREAT;
    if (request.writeThrough) flags |= O_DSYNC;
    Descriptor file(OpenOnce(path, flags | (Writes(request) ? O_RDWR : O_RDONLY)));
    // Marks want a descriptor that can read; only a file that cannot be read does without.
    if (!file && errno == EACCES && request.mode.write && !request.mode.read) {
        file.Reset(OpenOnce(path, flags | O_WRONLY));
    }
    if (!file) ThrowErrno(errno, name, path);
    return file;
}

// The read-only attribute stands in the mode and is obeyed there: root passes every permission check.
void CheckOpenable(const struct stat& status, const OpenRequest& request, std::string_view name) {
    const bool readOnly = (status.st_mode & kAnyWriteBit) == 0;
    if (!S_ISREG(status.st_mode) || (readOnly && Writes(request))) ThrowCode(kAccessDenied, name);
}

// One try. No descriptor: the file was replaced or deleted between opening and marking, so the marks protect nothing.
Descriptor TryOpen(const std::string& path, const OpenRequest& request, std::string_view name) {
    Descriptor file = OpenPlain(path, request, name);
    struct stat opened = {};
    if (::fstat(file.Get(), &opened) != 0) ThrowErrno(errno, name);
    CheckOpenable(opened, request, name);
    if (!ClaimShare(file.Get(), request.mode)) ThrowCode(kSharingViolation, name);
    if (!StandsAt(path, opened)) CloseShared(file);
    return file;
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

Descriptor OpenShared(const std::string& posixPath, const OpenRequest& request, std::string_view name) {
    Descriptor file;
    for (int tries = 0; !file; ++tries) {
        if (tries == kReplacedTries) ThrowCode(kSharingViolation, name);
        file = TryOpen(posixPath, request, name);
    }
    if (request.truncate && Empty(file) != 0) {
        const int error = errno;
        CloseShared(file);
        ThrowErrno(error, name);
    }
    return file;
}

int CloseShared(Descriptor& file, bool duplicated) noexcept {
    if (!duplicated) WithdrawShare(file.Get());
    // Whatever the answer, Linux has closed it; after EINTR too.
    return ::close(file.Release()) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace qel
