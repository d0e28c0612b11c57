#include "qellib10/platform/storage/unfinished_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/storage/same_file.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr std::int64_t kLockedByte = 0x7FFFFFFFFFF50000;  // past the marks of share modes and the byte of OpenLocked
constexpr std::size_t kLongestName = 255;                 // bytes of a name on disk
constexpr unsigned kNumbers = 0x10000;
constexpr unsigned kPassedOver = 8;  // free numbers before one that may belong to a killed writer
constexpr unsigned kFirst = 0xE100;  // unlike the numbers that people choose

std::string NameBeside(const std::string& target, unsigned number) {
    char suffix[16];
    const int length = std::snprintf(suffix, sizeof suffix, ".%04X.tmp", (kFirst + number) % kNumbers);
    const std::size_t start = target.rfind('/') + 1;  // npos + 1 is 0
    return target.substr(0, start) + target.substr(start, kLongestName - static_cast<std::size_t>(length)) + suffix;
}

int Lock(const Descriptor& file, short type) {
    struct flock lock = RecordLock(type, kLockedByte, 1);
    return ::fcntl(file.Get(), F_OFD_SETLK, &lock) == 0 ? 0 : errno;
}

// A file that may be a leftover, for the lock of whoever removes it, which needs the right to write. What is left of a
// read-only file is made writable, if no living writer has it and it is our own.
Descriptor OpenToRemove(const std::string& path) {
    const auto open = [&](int access) {
        return Descriptor(::open(path.c_str(), access | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    };
    Descriptor file = open(O_RDWR);
    if (file || errno != EACCES) return file;
    const Descriptor readOnly = open(O_RDONLY);
    struct stat status = {};
    const bool hasNoWriter = readOnly && Lock(readOnly, F_RDLCK) == 0;
    if (!hasNoWriter || ::fstat(readOnly.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return file;
    // A writer that had it until now may have given it its final name, perhaps beside this one. Then its rights are
    // final too.
    const bool isOnlyName = status.st_nlink == 1 && IsStillAt(path, status);
    if (isOnlyName && ::fchmod(readOnly.Get(), S_IRUSR | S_IWUSR) == 0) file = open(O_RDWR);
    return file;
}

// Removes the file if no living writer has it. The lock also keeps out others that remove it: the second would remove
// the file that the first creates under its name.
// @return whether it is removed
bool RemoveLeftover(const std::string& path) {
    const Descriptor file = OpenToRemove(path);
    struct stat opened = {};
    if (!file || ::fstat(file.Get(), &opened) != 0 || !S_ISREG(opened.st_mode)) return false;
    return Lock(file, F_WRLCK) == 0 && IsStillAt(path, opened) && ::unlink(path.c_str()) == 0;
}

}  // namespace

// The delegated constructor has already constructed the object: if this one throws, the destructor removes the file.
UnfinishedFile::UnfinishedFile(const std::string& target, unsigned mode, std::string_view name) : UnfinishedFile() {
    unsigned number = 0;
    do {
        if (number == kNumbers) ThrowCode(kFileExists, name);
        m_path = NameBeside(target, number++);
    } while (!Make(mode, name));
    for (unsigned other = 0, end = number + kPassedOver; other < std::min(end, kNumbers); ++other) {
        const std::string path = NameBeside(target, other);
        if (path != m_path && RemoveLeftover(path)) end = std::max(end, other + 1 + kPassedOver);
    }
}

// A read-only file has become so only after its lock: if somebody makes one writable to remove it, no writer has it.
// @return false if another file has the name, or this one has lost it
bool UnfinishedFile::Make(unsigned mode, std::string_view name) {
    constexpr int kNew = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    const auto make = [&] {
        m_file.Reset(Uninterrupted([&] { return ::open(m_path.c_str(), kNew, mode | S_IWUSR); }));
        return static_cast<bool>(m_file);
    };
    if (!make()) {
        if (errno != EEXIST) ThrowErrno(errno, name, m_path);
        if (!RemoveLeftover(m_path) || !make()) return false;
    }
    // Whoever found it before it was locked is removing it now, or has done so.
    const int error = Lock(m_file, F_WRLCK);
    if ((error != 0 && !HasNoLocks(error)) || !HasItsName()) return false;
    if ((mode & S_IWUSR) == 0) TakeWriteRights(mode, name);
    return true;
}

// Those that it would not have got at once.
void UnfinishedFile::TakeWriteRights(unsigned mode, std::string_view name) const {
    constexpr unsigned kMayWrite = 0222;
    struct stat made = {};
    if (::fstat(m_file.Get(), &made) != 0 || ::fchmod(m_file.Get(), made.st_mode & 07777 & ~(kMayWrite & ~mode)) != 0)
        ThrowErrno(errno, name, m_path);
}

bool UnfinishedFile::HasItsName() const {
    struct stat made = {};
    return ::fstat(m_file.Get(), &made) == 0 && IsStillAt(m_path, made);
}

UnfinishedFile::~UnfinishedFile() {
    if (!m_path.empty() && HasItsName()) ::unlink(m_path.c_str());
}

}  // namespace qel
