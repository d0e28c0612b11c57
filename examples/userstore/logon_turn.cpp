#include "logon_turn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include "secrets.h"
#include "store_error.h"

namespace userstore {
namespace {

using Clock = std::chrono::steady_clock;

constexpr mode_t kOwnerOnly = 0600, kReadAndWrite = 0666;
constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
constexpr std::chrono::seconds kLongestWait(30);
constexpr std::chrono::milliseconds kBetweenTries(5);
constexpr std::size_t kNameBytes = 8;

// The name of a user may hold what no file's name can.
std::string FileName(const std::string& foldedName) {
    constexpr char kDigits[] = "0123456789abcdef";
    const TokenDigest digest = DigestOf(foldedName);
    std::string name;
    for (std::size_t i = 0; i < kNameBytes; ++i) (name += kDigits[digest[i] >> 4]) += kDigits[digest[i] & 0xF];
    return name;
}

// One name for the store, by whatever link a program comes to it.
std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    if (real == nullptr) throw StoreError(path + ": " + std::strerror(errno));
    return real.get();
}

// For the accounts of the system that may write the store, and for no others: what a killed logon leaves must be taken
// over by all of them. Only an administrator can give it another's owner.
void ShareAs(const struct stat& store, const qel::Descriptor& file) {
    if (::fchown(file.Get(), store.st_uid, store.st_gid) != 0 && ::fchown(file.Get(), kSameOwner, store.st_gid) != 0) {
        return;  // a group that the caller is not in: its owner's alone
    }
    ::fchmod(file.Get(), store.st_mode & kReadAndWrite);
}

// Without a name until its rights are set: a kill in between must leave nothing that only its maker can open.
void MakeFile(const std::string& path, const struct stat& store) {
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    qel::Descriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kOwnerOnly));
    if (!file && (errno == EOPNOTSUPP || errno == EISDIR)) {  // a disk that has no files without names
        file.Reset(::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kOwnerOnly));
        if (file) return ShareAs(store, file);
    }
    if (file) {
        ShareAs(store, file);
        const std::string nameless = "/proc/self/fd/" + std::to_string(file.Get());
        if (::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0) return;
    }
    if (errno != EEXIST) throw StoreError(path + ": " + std::strerror(errno));
}

}  // namespace

LogonTurn::LogonTurn(const std::string& storePath, const std::string& foldedName)
    : m_store(RealPath(storePath)), m_path(m_store + ".logon-" + FileName(foldedName)) {
    for (const Clock::time_point end = Clock::now() + kLongestWait; !Take();) {
        if (Clock::now() >= end) throw StoreError("another logon of this user has not come to its end");
        std::this_thread::sleep_for(kBetweenTries);
    }
}

// The one who had it before removes the file: what is locked may no longer be what its name means.
bool LogonTurn::Take() {
    constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_CLOEXEC;
    m_file.Reset(::open(m_path.c_str(), kFlags));
    if (!m_file && errno == ENOENT) {
        struct stat store = {};
        if (::stat(m_store.c_str(), &store) != 0) throw StoreError(m_store + ": " + std::strerror(errno));
        MakeFile(m_path, store);
        m_file.Reset(::open(m_path.c_str(), kFlags));
        if (!m_file && errno == ENOENT) return false;  // taken, and given back, by another one meanwhile
    }
    if (!m_file) throw StoreError(m_path + ": " + std::strerror(errno));
    if (::flock(m_file.Get(), LOCK_EX | LOCK_NB) != 0) return false;
    struct stat locked = {}, named = {};
    return ::fstat(m_file.Get(), &locked) == 0 && ::stat(m_path.c_str(), &named) == 0 &&
           locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
}

LogonTurn::~LogonTurn() { ::unlink(m_path.c_str()); }

}  // namespace userstore
