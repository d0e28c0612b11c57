#include "qellib10/platform/storage/file_attributes.h"

#include <sys/xattr.h>

#include <cerrno>
#include <string>

#include "qellib10/platform/storage/file_error.h"

namespace qel {
namespace {

// Calls @p read for the size, then for the bytes, and again if they have grown meanwhile.
// @return nothing if it may not be read
template <class Byte, class Read> std::optional<std::vector<Byte>> ReadWhole(const Read& read, std::string_view name) {
    for (;;) {
        const ssize_t size = read(nullptr, 0);
        std::vector<Byte> bytes(size > 0 ? static_cast<std::size_t>(size) : 0);
        const ssize_t got = size > 0 ? read(bytes.data(), bytes.size()) : size;
        if (got >= 0) {
            bytes.resize(static_cast<std::size_t>(got));
            return bytes;
        }
        if (errno == ENODATA || IsNotAllowed(errno)) return std::nullopt;
        if (errno != ERANGE) ThrowErrno(errno, name);
    }
}

}  // namespace

bool IsNotAllowed(int error) { return error == EPERM || error == EACCES || error == EINVAL || error == EOPNOTSUPP; }

std::optional<std::vector<std::byte>> FileAttributes::Get(const std::string& attribute) const {
    const auto read = [&](std::byte* bytes, std::size_t size) {
        return m_path.empty() ? ::fgetxattr(m_file, attribute.c_str(), bytes, size)
                              : ::getxattr(m_path.c_str(), attribute.c_str(), bytes, size);
    };
    return ReadWhole<std::byte>(read, m_name);
}

std::vector<std::string> FileAttributes::Names() const {
    const auto read = [&](char* bytes, std::size_t size) {
        return m_path.empty() ? ::flistxattr(m_file, bytes, size) : ::listxattr(m_path.c_str(), bytes, size);
    };
    const std::vector<char> found = ReadWhole<char>(read, m_name).value_or(std::vector<char>());
    std::vector<std::string> names;
    for (std::size_t at = 0; at < found.size(); at += names.back().size() + 1) names.emplace_back(found.data() + at);
    return names;
}

}  // namespace qel
