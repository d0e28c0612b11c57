#include "qellib10/platform/storage/name_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/same_file.h"

namespace qel {
namespace {

constexpr mode_t kOwnerOnly = 0600, kReadAndWrite = 0666;
constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
constexpr std::chrono::milliseconds kLongestSleep(5);

[[noreturn]] void Throw(const std::string& path) { ThrowErrno(errno, path, path); }

// One name for the file, by whatever link a program comes to it.
std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    if (real == nullptr) Throw(path);
    return real.get();
}

// For the accounts of the system that may write the file, and for no others: what a killed program leaves must be taken
// over by all of them. Only an administrator can give it another's owner.
void ShareAs(const struct stat& about, const Descriptor& file) {
    if (::fchown(file.Get(), about.st_uid, about.st_gid) != 0 && ::fchown(file.Get(), kSameOwner, about.st_gid) != 0) {
        return;  // a group that the caller is not in: its owner's alone
    }
    ::fchmod(file.Get(), about.st_mode & kReadAndWrite);
}

// Without a name until its rights are set: a kill in between must leave nothing that only its maker can open.
void MakeFile(const std::string& path, const struct stat& about) {
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    Descriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kOwnerOnly));
    if (!file && (errno == EOPNOTSUPP || errno == EISDIR)) {  // a disk that has no files without names
        file.Reset(::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kOwnerOnly));
        if (file) return ShareAs(about, file);
    }
    if (file) {
        ShareAs(about, file);
        const std::string nameless = "/proc/self/fd/" + std::to_string(file.Get());
        if (::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0) return;
    }
    if (errno != EEXIST) Throw(path);
}

}  // namespace

NameLock::NameLock(const std::string& posixPath, std::string_view suffix, std::chrono::nanoseconds patience)
    : m_about(RealPath(posixPath)), m_path(m_about + std::string(suffix)) {
    Backoff wait(patience, kLongestSleep);
    do m_isTaken = Take();
    while (!m_isTaken && wait.Again());
}

// Whoever had it before removes the file: what is locked may no longer be what its name means.
bool NameLock::Take() {
    constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_CLOEXEC;
    m_file.Reset(::open(m_path.c_str(), kFlags));
    if (!m_file && errno == ENOENT) {
        struct stat about = {};
        if (::stat(m_about.c_str(), &about) != 0) Throw(m_about);
        MakeFile(m_path, about);
        m_file.Reset(::open(m_path.c_str(), kFlags));
        if (!m_file && errno == ENOENT) return false;  // taken, and given back, by another one meanwhile
    }
    if (!m_file) Throw(m_path);
    if (::flock(m_file.Get(), LOCK_EX | LOCK_NB) != 0) return false;
    struct stat locked = {};
    return ::fstat(m_file.Get(), &locked) == 0 && IsStillAt(m_path, locked);
}

NameLock::~NameLock() {
    if (m_isTaken) ::unlink(m_path.c_str());
}

}  // namespace qel
