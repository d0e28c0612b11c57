#include "qellib10/platform/storage/guarded_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr mode_t kMode = 0644, kPrivateMode = 0600;

struct stat StatusOf(const Descriptor& file, const std::string& path) {
    struct stat status = {};
    if (::fstat(file.Get(), &status) != 0) ThrowErrno(errno, path);
    return status;
}

// O_NONBLOCK: a pipe in the place of the file is refused below instead of being waited for.
Descriptor Open(const std::string& posixPath, GuardedFile::Use use) {
    const bool isPrivate = use == GuardedFile::Use::kMakePrivate;
    const int make = use == GuardedFile::Use::kMake || isPrivate ? O_CREAT
                     : use == GuardedFile::Use::kMakeNew         ? O_CREAT | O_EXCL
                                                                 : 0;
    const int flags = (use == GuardedFile::Use::kRead ? O_RDONLY : O_RDWR) | make | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    return Descriptor(
        Uninterrupted([&] { return ::open(posixPath.c_str(), flags, isPrivate ? kPrivateMode : kMode); }));
}

}  // namespace

GuardedFile::GuardedFile(std::string path, std::string posixPath, Descriptor file)
    : m_path(std::move(path)), m_posixPath(std::move(posixPath)), m_file(std::move(file)), m_process(::getpid()) {
    Identify();
}

GuardedFile::GuardedFile(const std::string& path, Use use)
    : m_path(path), m_posixPath(ToPosixPath(path)), m_file(Open(m_posixPath, use)), m_process(::getpid()) {
    if (!m_file && errno == ELOOP) ThrowCode(kAccessDenied, m_path);  // a link
    if (!m_file) ThrowErrno(errno, m_path, m_posixPath);
    Identify();
}

void GuardedFile::Identify() {
    const struct stat status = StatusOf(m_file, m_path);
    if (!S_ISREG(status.st_mode)) ThrowCode(kAccessDenied, m_path);
    m_device = status.st_dev;
    m_inode = status.st_ino;
}

std::optional<GuardedFile> GuardedFile::OpenIfThere(const std::string& path, Use use) {
    std::string posixPath = ToPosixPath(path);
    Descriptor file = Open(posixPath, use);
    if (file) return GuardedFile(path, std::move(posixPath), std::move(file));
    if (errno == ENOENT) return std::nullopt;
    if (errno == ELOOP) ThrowCode(kAccessDenied, path);
    ThrowErrno(errno, path, posixPath);
}

std::uint64_t GuardedFile::Size() const { return static_cast<std::uint64_t>(StatusOf(m_file, m_path).st_size); }

bool GuardedFile::IsPrivate() const {
    const struct stat status = StatusOf(m_file, m_path);
    return (status.st_mode & 07777) == 0600 && status.st_uid == ::geteuid();
}

bool GuardedFile::IsInPlace() const {
    struct stat named = {};
    if (::lstat(m_posixPath.c_str(), &named) == 0) return named.st_dev == m_device && named.st_ino == m_inode;
    if (errno != ENOENT) ThrowErrno(errno, m_path, m_posixPath);
    return false;
}

std::uint64_t GuardedFile::RequireInPlace() const {
    struct stat named = {};
    if (::lstat(m_posixPath.c_str(), &named) != 0) ThrowErrno(errno, m_path, m_posixPath);
    if (named.st_dev != m_device || named.st_ino != m_inode) ThrowCode(kFileAltered, m_path);
    return static_cast<std::uint64_t>(named.st_size);
}

std::size_t GuardedFile::ReadAt(std::span<std::byte> bytes, std::uint64_t offset) const {
    return ReadFullyAt(m_file, bytes, offset, m_path);
}
void GuardedFile::WriteAt(std::span<const std::byte> bytes, std::uint64_t offset) const {
    WriteFullyAt(m_file, bytes, offset, m_path);
}
void GuardedFile::Truncate(std::uint64_t size) const {
    if (Uninterrupted([&] { return ::ftruncate(m_file.Get(), static_cast<off_t>(size)); }) != 0)
        ThrowWriteErrno(errno, m_path);
}
void GuardedFile::Flush() const { FlushData(m_file, m_path); }
void GuardedFile::FlushFolder() const { FlushFolderOf(m_posixPath, m_path); }

GuardedFile::Lock::Lock(const GuardedFile& file, std::chrono::milliseconds patience) : m_file(file) {
    if (file.m_process != ::getpid()) ThrowCode(kLockViolation, file.m_path);
    // An append takes some 300 us: waiters that slept for longer would leave the lock unused.
    Backoff wait(std::min<std::chrono::milliseconds>(patience, std::chrono::hours(24 * 365)),
                 std::chrono::microseconds(100));
    for (;;) {
        struct ::flock lock = RecordLock(F_WRLCK, 0, 0);
        if (Uninterrupted([&] { return ::fcntl(file.m_file.Get(), F_OFD_SETLK, &lock); }) == 0) return;
        if (errno != EAGAIN && errno != EACCES) ThrowErrno(errno, file.m_path);
        if (!wait.Again()) ThrowCode(kLockViolation, file.m_path);
    }
}

GuardedFile::Lock::~Lock() {
    // A refused unlocking would keep everybody out until the file is closed; a second try is what can be done.
    for (int tries = 0; tries < 2; ++tries) {
        struct ::flock lock = RecordLock(F_UNLCK, 0, 0);
        if (::fcntl(m_file.m_file.Get(), F_OFD_SETLK, &lock) == 0) return;
    }
}

}  // namespace qel
