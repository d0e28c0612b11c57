#include "qellib10/platform/storage/block_io.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

// @param call reads into the remaining bytes; gets the number of bytes already read
template <class Call> std::size_t ReadAll(std::span<std::byte> bytes, std::string_view name, Call&& call) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = Uninterrupted([&] { return call(bytes.subspan(done), done); });
        if (got < 0) ThrowErrno(errno, name);
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

template <class Call> void WriteAll(std::span<const std::byte> bytes, std::string_view name, Call&& call) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t put = Uninterrupted([&] { return call(bytes.subspan(done), done); });
        if (put < 0) ThrowWriteErrno(errno, name);
        if (put == 0) throw CFileException(CFileException::diskFull, -1, CString(name));
        done += static_cast<std::size_t>(put);
    }
}

// Errors of one way of copying that another way may not have.
bool NeedsOtherWay(int error) {
    return error == EXDEV || error == EOPNOTSUPP || error == EINVAL || error == ENOSYS || error == EBADF ||
           error == EPERM || error == ETXTBSY;
}

// Some file systems let whole files share their blocks, which takes no time at all.
bool ShareBlocks(const Descriptor& from, const Descriptor& to, std::uint64_t count) {
    struct stat source = {};
    struct stat target = {};
    return ::fstat(from.Get(), &source) == 0 && ::fstat(to.Get(), &target) == 0 && target.st_size == 0 &&
           static_cast<std::uint64_t>(source.st_size) == count && ::ioctl(to.Get(), FICLONE, from.Get()) == 0;
}

// @return bytes copied before the end, or until the kernel gave up
std::uint64_t CopyInKernel(const Descriptor& from, off_t fromOffset, const Descriptor& to, off_t toOffset,
                           std::uint64_t count, std::string_view toName) {
    constexpr std::uint64_t kMaxChunk = 1 << 30;
    std::uint64_t done = 0;
    while (done < count) {
        const ssize_t copied = Uninterrupted([&] {
            return ::copy_file_range(from.Get(), &fromOffset, to.Get(), &toOffset, std::min(count - done, kMaxChunk),
                                     0);
        });
        if (copied < 0 && !NeedsOtherWay(errno)) ThrowWriteErrno(errno, toName);
        if (copied <= 0) break;
        done += static_cast<std::uint64_t>(copied);
    }
    return done;
}

}  // namespace

std::size_t ReadFully(const Descriptor& file, std::span<std::byte> bytes, std::string_view name) {
    return ReadAll(bytes, name, [&](std::span<std::byte> rest, std::size_t) {
        return ::read(file.Get(), rest.data(), rest.size());
    });
}

std::size_t ReadFullyAt(const Descriptor& file, std::span<std::byte> bytes, std::uint64_t offset,
                        std::string_view name) {
    return ReadAll(bytes, name, [&](std::span<std::byte> rest, std::size_t done) {
        return ::pread(file.Get(), rest.data(), rest.size(), static_cast<off_t>(offset + done));
    });
}

void WriteFully(const Descriptor& file, std::span<const std::byte> bytes, std::string_view name) {
    WriteAll(bytes, name, [&](std::span<const std::byte> rest, std::size_t) {
        return ::write(file.Get(), rest.data(), rest.size());
    });
}

void WriteFully(const Descriptor& file, std::span<const std::byte> bytes, std::string_view name,
                std::uint64_t& written) {
    WriteAll(bytes, name, [&](std::span<const std::byte> rest, std::size_t) {
        const ssize_t put = ::write(file.Get(), rest.data(), rest.size());
        if (put > 0) written += static_cast<std::uint64_t>(put);
        return put;
    });
}

void WriteFullyAt(const Descriptor& file, std::span<const std::byte> bytes, std::uint64_t offset,
                  std::string_view name) {
    WriteAll(bytes, name, [&](std::span<const std::byte> rest, std::size_t done) {
        return ::pwrite(file.Get(), rest.data(), rest.size(), static_cast<off_t>(offset + done));
    });
}

void CutBack(const Descriptor& file, std::uint64_t count) noexcept {
    const off_t end = count > 0 ? ::lseek(file.Get(), 0, SEEK_CUR) : -1;
    const off_t start = end - static_cast<off_t>(count);
    if (end >= 0 && start >= 0) Uninterrupted([&] { return ::ftruncate(file.Get(), start); });
}

std::uint64_t CopyBytes(const Descriptor& from, std::uint64_t fromOffset, const Descriptor& to, std::uint64_t toOffset,
                        std::uint64_t count, std::string_view fromName, std::string_view toName) {
    if (fromOffset == 0 && toOffset == 0 && ShareBlocks(from, to, count)) return count;
    std::uint64_t done =
        CopyInKernel(from, static_cast<off_t>(fromOffset), to, static_cast<off_t>(toOffset), count, toName);
    if (done == count) return done;
    const auto block = MakeIoBlock();
    while (done < count) {
        const std::span<std::byte> wanted(block->bytes, std::min<std::uint64_t>(IoBlock::kSize, count - done));
        const std::size_t got = ReadFullyAt(from, wanted, fromOffset + done, fromName);
        WriteFullyAt(to, wanted.first(got), toOffset + done, toName);
        done += got;
        if (got < wanted.size()) break;
    }
    return done;
}

void FlushData(const Descriptor& file, std::string_view name) {
    if (Uninterrupted([&] { return ::fdatasync(file.Get()); }) != 0) ThrowWriteErrno(errno, name);
}

void FlushFolderOf(const std::string& posixPath, std::string_view name) {
    const Descriptor folder(::open(PosixFolderOf(posixPath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder that may be written but not read cannot be opened; its names reach the disk later.
    if (!folder || Uninterrupted([&] { return ::fsync(folder.Get()); }) == 0) return;
    if (errno == EINVAL || errno == EROFS) return;
    ThrowWriteErrno(errno, name);
}

}  // namespace qel
