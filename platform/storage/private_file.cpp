#include "qellib10/platform/storage/private_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <span>

#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/unfinished_file.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

constexpr mode_t kOwnerOnly = 0600;

}  // namespace

void WritePrivateFile(const std::string& posixPath, std::string_view content) {
    UnfinishedFile made(posixPath, kOwnerOnly, posixPath);
    WriteFully(made.File(), std::as_bytes(std::span(content)), posixPath);
    FlushData(made.File(), posixPath);
    if (!made.HasItsName()) ThrowCode(kSharingViolation, posixPath);
    if (std::rename(made.Path().c_str(), posixPath.c_str()) != 0) ThrowErrno(errno, posixPath, posixPath);
    made.Finish();
    FlushFolderOf(posixPath, posixPath);
}

std::string ReadPrivateFile(const std::string& posixPath, std::size_t longest) {
    const Descriptor file(::open(posixPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!file || ::fstat(file.Get(), &status) != 0) return {};
    if (!S_ISREG(status.st_mode) || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) return {};
    std::string content(longest + 1, '\0');
    content.resize(ReadFully(file, std::as_writable_bytes(std::span(content)), posixPath));
    if (content.size() > longest) content.clear();
    return content;  // moved: no copy of the secret is left
}

void RemovePrivateFile(const std::string& posixPath) {
    if (::unlink(posixPath.c_str()) != 0 && errno != ENOENT) ThrowErrno(errno, posixPath, posixPath);
}

void MakePrivateFile(const std::string& posixPath) {
    constexpr int kNew = O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC;
    const Descriptor made(Uninterrupted([&] { return ::open(posixPath.c_str(), kNew, kOwnerOnly); }));
}

}  // namespace qel
