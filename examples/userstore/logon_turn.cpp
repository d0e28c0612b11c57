#include "logon_turn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "secrets.h"
#include "store_error.h"

namespace userstore {
namespace {

using Clock = std::chrono::steady_clock;

constexpr mode_t kOwnerOnly = 0600;
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

}  // namespace

LogonTurn::LogonTurn(const std::string& storePath, const std::string& foldedName)
    : m_path(storePath + ".logon-" + FileName(foldedName)) {
    for (const Clock::time_point end = Clock::now() + kLongestWait; !Take();) {
        if (Clock::now() >= end) throw StoreError("another logon of this user has not come to its end");
        std::this_thread::sleep_for(kBetweenTries);
    }
}

// The one who had it before removes the file: what is locked may no longer be what its name means.
bool LogonTurn::Take() {
    m_file.Reset(::open(m_path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
    if (!m_file) throw StoreError(m_path + ": " + std::strerror(errno));
    if (::flock(m_file.Get(), LOCK_EX | LOCK_NB) != 0) return false;
    struct stat locked = {}, named = {};
    return ::fstat(m_file.Get(), &locked) == 0 && ::stat(m_path.c_str(), &named) == 0 &&
           locked.st_dev == named.st_dev && locked.st_ino == named.st_ino;
}

LogonTurn::~LogonTurn() { ::unlink(m_path.c_str()); }

}  // namespace userstore
