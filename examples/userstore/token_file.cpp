#include "token_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>

#include <qellib10/qellib10.h>

#include "store_error.h"

namespace userstore {
namespace {

constexpr std::size_t kLongestToken = 256;
constexpr mode_t kOwnerOnly = 0600;

[[noreturn]] void Throw(const std::string& posixPath) { throw StoreError(posixPath + ": " + std::strerror(errno)); }

}  // namespace

void WriteToken(const std::string& posixPath, const std::string& token) {
    const std::string fresh = posixPath + ".new";
    ::unlink(fresh.c_str());  // of a program that was killed
    const qel::Descriptor file(::open(fresh.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kOwnerOnly));
    if (!file) Throw(fresh);
    qel::WriteFully(file, std::as_bytes(std::span(token)), fresh);
    qel::FlushData(file, fresh);
    if (std::rename(fresh.c_str(), posixPath.c_str()) != 0) Throw(posixPath);
    qel::FlushFolderOf(posixPath, posixPath);
}

std::string ReadToken(const std::string& posixPath) {
    const qel::Descriptor file(::open(posixPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!file || ::fstat(file.Get(), &status) != 0) return {};
    if (!S_ISREG(status.st_mode) || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) return {};
    std::array<char, kLongestToken + 1> bytes;
    const std::size_t size = qel::ReadFully(file, std::as_writable_bytes(std::span(bytes)), posixPath);
    return size <= kLongestToken ? std::string(bytes.data(), size) : std::string();
}

void RemoveToken(const std::string& posixPath) {
    if (::unlink(posixPath.c_str()) != 0 && errno != ENOENT) Throw(posixPath);
}

}  // namespace userstore
