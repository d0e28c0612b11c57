#include "qellib10/platform/sync/object_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/record_lock.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {
namespace {

bool SetLock(const Descriptor& file, short type) {
    struct flock lock = RecordLock(type, 0, 1);
    if (::fcntl(file.Get(), F_OFD_SETLK, &lock) == 0) return true;
    if (errno == EAGAIN || errno == EACCES) return false;
    throw SystemFailure{CodeOfErrno(errno)};
}

}  // namespace

// Allocated now: a file that only has the length would kill whoever first accesses a page for which there is no memory.
void Extend(const Descriptor& file, std::uint64_t blockSize) {
    const auto length = static_cast<off_t>(blockSize) + kBlockOffset;
    rlimit limit{};
    // Above this limit the system does not return an error, it kills the process.
    if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur < static_cast<rlim_t>(length)) {
        throw SystemFailure{kOutOfMemory};
    }
    int error = 0;
    do error = ::posix_fallocate(file.Get(), 0, length);
    while (error == EINTR);
    if (error == ENOSPC || error == EFBIG) throw SystemFailure{kOutOfMemory};
    if (error != 0) throw SystemFailure{CodeOfErrno(error)};
}

void WriteHeader(const Descriptor& file, const ObjectHeader& header) {
    if (::pwrite(file.Get(), &header, sizeof header, 0) != sizeof header) throw SystemFailure{kWriteFault};
}

std::optional<ObjectHeader> ReadHeader(const Descriptor& file) {
    ObjectHeader header;
    if (::pread(file.Get(), &header, sizeof header, 0) != sizeof header) return std::nullopt;
    const bool isKnown = header.kind == ObjectKind::Memory || header.kind == ObjectKind::Mutex;
    if (header.magic != ObjectHeader::kMagic || !isKnown || header.nameLength > kLongestObjectName) return std::nullopt;
    if (!Look(file, header.size).isWhole) return std::nullopt;
    return header;
}

std::optional<ObjectHeader> ReadHeader(const Descriptor& file, std::string_view name) {
    const std::optional<ObjectHeader> header = ReadHeader(file);
    return header && std::string_view(header->name, header->nameLength) == name ? header : std::nullopt;
}

FileState Look(const Descriptor& file, std::uint64_t blockSize) {
    struct stat status {};
    if (::fstat(file.Get(), &status) != 0) throw SystemFailure{CodeOfErrno(errno)};
    const auto length = static_cast<std::uint64_t>(status.st_size);
    return {status.st_nlink != 0, length >= kBlockOffset && length - kBlockOffset >= blockSize};
}

bool IsHeld(const Descriptor& file) {
    struct flock lock = RecordLock(F_WRLCK, 0, 1);
    if (::fcntl(file.Get(), F_OFD_GETLK, &lock) != 0) throw SystemFailure{CodeOfErrno(errno)};
    return lock.l_type != F_UNLCK;
}

bool Hold(const Descriptor& file) { return SetLock(file, F_RDLCK); }
bool HoldAlone(const Descriptor& file) { return SetLock(file, F_WRLCK); }
void LetGo(const Descriptor& file) { SetLock(file, F_UNLCK); }

}  // namespace qel
