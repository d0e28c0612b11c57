#include "qellib10/platform/storage/share_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "qellib10/platform/random.h"
#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/storage/same_file.h"

namespace qel {
namespace {

constexpr off_t kSpan = 0x10000;

enum Mark : int { kReads, kWrites, kDeniesRead, kDeniesWrite, kMarks };

constexpr int kNetworkTries = 5;
constexpr int kReplacedTries = 100;                    // for a file that is replaced faster than it can be opened
constexpr auto kGuardLimit = std::chrono::seconds(1);  // a stopped process must not hang the others

int SetLock(int file, short type, off_t first, off_t length) {
    struct flock lock = RecordLock(type, first, length);
    return ::fcntl(file, F_OFD_SETLK, &lock) == 0 ? 0 : errno;
}

// Whether another opening holds a mark of this kind. Works on every descriptor, including a read-only one.
bool Marked(int file, Mark mark) {
    struct flock lock = RecordLock(F_WRLCK, kShareMarksAt + mark * kSpan, kSpan);
    return ::fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

// Many may hold the same mark: a read lock on the first byte. A descriptor that cannot read takes a write lock on a
// byte of its own instead.
int SetMark(int file, Mark mark, bool readable) {
    const off_t range = kShareMarksAt + mark * kSpan;
    if (readable) return SetLock(file, F_RDLCK, range, 1);
    for (int tries = 0;; ++tries) {
        const int error = SetLock(file, F_WRLCK, range + 1 + RandomNumber() % (kSpan - 1), 1);
        if ((error != EAGAIN && error != EACCES) || tries == 100) return error;
    }
}

bool HasConflict(int file, const ShareMode& mode) {
    return (mode.read && Marked(file, kDeniesRead)) || (mode.write && Marked(file, kDeniesWrite)) ||
           (mode.denyRead && Marked(file, kReads)) || (mode.denyWrite && Marked(file, kWrites));
}

int SetMarks(int file, const ShareMode& mode, bool readable) {
    int error = 0;
    if (mode.read) error = SetMark(file, kReads, readable);
    if (error == 0 && mode.write) error = SetMark(file, kWrites, readable);
    if (error == 0 && mode.denyRead) error = SetMark(file, kDeniesRead, readable);
    if (error == 0 && mode.denyWrite) error = SetMark(file, kDeniesWrite, readable);
    if (error != 0) WithdrawShare(file);
    return error;
}

bool OnNetwork(int file) {
    struct statfs system = {};
    if (::fstatfs(file, &system) != 0) return false;
    constexpr unsigned kTypes[] = {0x6969, 0xFF534D42, 0xFE534D42, 0x517B};  // NFS, CIFS, SMB 2, SMB
    return std::ranges::find(kTypes, static_cast<unsigned>(system.f_type)) != std::end(kTypes);
}

// Takes the guard; it is released with the open file description or by ReleaseGuard.
// @return 0, EAGAIN if it was not free within the limit, or the reason why the file system has no guard
int TakeGuard(int file) {
    Backoff wait(kGuardLimit);
    while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return errno;
        if (!wait.Again()) return EAGAIN;
    }
    return 0;
}

void ReleaseGuard(int file) { ::flock(file, LOCK_UN); }

int MarkUnderGuard(int file, const ShareMode& mode, bool readable) {
    if (const int error = TakeGuard(file)) return error;
    const int error = HasConflict(file, mode) ? EAGAIN : SetMarks(file, mode, readable);
    ReleaseGuard(file);
    return error;
}

int MarkThenTest(int file, const ShareMode& mode, bool readable) {
    for (int tries = 0; tries < kNetworkTries; ++tries) {
        const int error = SetMarks(file, mode, readable);
        if (error != 0 && error != EAGAIN) return error;
        if (error == 0 && !HasConflict(file, mode)) return 0;
        WithdrawShare(file);
        SleepFor(std::chrono::microseconds(50 + RandomNumber() % 450));
    }
    return EAGAIN;
}

}  // namespace

bool ClaimShare(int file, int access, const ShareMode& mode) {
    int error;
    if (mode.denyRead && mode.denyWrite && access == O_RDWR) {
        error = SetLock(file, F_WRLCK, kShareMarksAt, kMarks * kSpan);  // one atomic step for everything below
    } else if (OnNetwork(file)) {
        error = MarkThenTest(file, mode, access != O_WRONLY);
    } else {
        error = MarkUnderGuard(file, mode, access != O_WRONLY);
    }
    return error == 0 || HasNoLocks(error);
}

void WithdrawShare(int file) noexcept { SetLock(file, F_UNLCK, kShareMarksAt, kMarks * kSpan); }

ExclusiveHold::ExclusiveHold(const std::string& posixPath, std::string_view name) {
    for (int tries = 0; !Take(posixPath, name); ++tries) {
        if (tries == kReplacedTries) ThrowCode(kSharingViolation, name);
        LetGo();
    }
}

bool ExclusiveHold::Take(const std::string& posixPath, std::string_view name) {
    constexpr int kFlags = O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY;
    m_file.Reset(::open(posixPath.c_str(), kFlags | O_RDONLY));
    const bool readable = static_cast<bool>(m_file);
    if (!readable && errno == EACCES) m_file.Reset(::open(posixPath.c_str(), kFlags | O_WRONLY));
    struct stat opened = {};
    if (!m_file || ::fstat(m_file.Get(), &opened) != 0 || !S_ISREG(opened.st_mode)) return true;

    const int guard = OnNetwork(m_file.Get()) ? 0 : TakeGuard(m_file.Get());
    struct stat now = {};
    if (::lstat(posixPath.c_str(), &now) != 0 || !IsSameFile(now, opened)) return false;
    // An exclusive opening does not take the guard; these marks stop it.
    const int error = SetMarks(m_file.Get(), {.denyRead = true, .denyWrite = true}, readable);
    if (guard == EAGAIN || error == EAGAIN || Marked(m_file.Get(), kReads) || Marked(m_file.Get(), kWrites)) {
        LetGo();
        ThrowCode(kSharingViolation, name);
    }
    return true;
}

void ExclusiveHold::LetGo() noexcept {
    if (!m_file) return;
    WithdrawShare(m_file.Get());
    ReleaseGuard(m_file.Get());
    m_file.Reset();
}

ExclusiveHold::~ExclusiveHold() { LetGo(); }

}  // namespace qel
