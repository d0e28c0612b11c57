#include "qellib10/platform/storage/access_list.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstdint>
#include <span>
#include <utility>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/storage/file_error.h"

namespace qel {
namespace {

constexpr std::size_t kHeader = 4, kEntry = 8, kRightsAt = 2;
constexpr std::uint32_t kVersion = 2;
enum Tag : std::uint16_t { kOwnGroup = 0x04, kMask = 0x10, kOthers = 0x20 };

// Where the rights of the entry @p tag are; 0 where the list has no such entry.
std::size_t RightsOf(std::span<const std::byte> list, Tag tag) {
    for (std::size_t at = kHeader; at < list.size(); at += kEntry) {
        if (GetNumber<std::uint16_t>(list, at) == tag) return at + kRightsAt;
    }
    return 0;
}

std::uint16_t Rights(std::span<const std::byte> list, Tag tag, std::uint16_t without) {
    const std::size_t at = RightsOf(list, tag);
    return at != 0 ? GetNumber<std::uint16_t>(list, at) : without;
}

bool IsUnderstood(std::span<const std::byte> list) {
    return list.size() > kHeader && (list.size() - kHeader) % kEntry == 0 &&
           GetNumber<std::uint32_t>(list, 0) == kVersion && RightsOf(list, kOwnGroup) != 0;
}

bool IsNone(int error) { return error == ENODATA || error == EOPNOTSUPP || error == EACCES || error == EPERM; }

}  // namespace

std::optional<std::vector<std::byte>> AttributeOf(const std::string& posixPath, const char* attribute,
                                                  std::string_view name) {
    for (;;) {
        const ssize_t size = ::getxattr(posixPath.c_str(), attribute, nullptr, 0);
        std::vector<std::byte> value(size > 0 ? static_cast<std::size_t>(size) : 0);
        const ssize_t got = size > 0 ? ::getxattr(posixPath.c_str(), attribute, value.data(), value.size()) : size;
        if (got >= 0) {
            value.resize(static_cast<std::size_t>(got));
            return value;
        }
        if (IsNone(errno)) return std::nullopt;
        if (errno != ERANGE) ThrowErrno(errno, name);  // else it became longer meanwhile
    }
}

AccessList::AccessList(const std::string& posixPath, std::string_view name) {
    std::optional<std::vector<std::byte>> bytes = AttributeOf(posixPath, kName, name);
    if (bytes && IsUnderstood(*bytes)) m_bytes = *std::move(bytes);
}

unsigned AccessList::GroupBits() const {
    return static_cast<unsigned>(Rights(m_bytes, kOwnGroup, 0) & Rights(m_bytes, kMask, 07)) << 3;
}

void AccessList::LimitGroup() {
    if (IsEmpty()) return;
    const unsigned limited = Rights(m_bytes, kOwnGroup, 0) & Rights(m_bytes, kOthers, 0);
    PutNumber(std::span(m_bytes), RightsOf(m_bytes, kOwnGroup), static_cast<std::uint16_t>(limited));
}

int AccessList::GiveTo(int file) const {
    if (IsEmpty() && ::fgetxattr(file, kName, nullptr, 0) < 0) return IsNone(errno) ? 0 : errno;
    const int given =
        IsEmpty() ? ::fremovexattr(file, kName) : ::fsetxattr(file, kName, m_bytes.data(), m_bytes.size(), 0);
    return given == 0 ? 0 : errno;
}

}  // namespace qel
