#include "qellib10/platform/storage/access_list.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>

#include "qellib10/platform/endian.h"

namespace qel {
namespace {

constexpr std::size_t kHeader = 4, kEntry = 8, kRightsAt = 2;
constexpr std::uint32_t kVersion = 2;
enum Tag : std::uint16_t { kNamedUser = 0x02, kOwnGroup = 0x04, kNamedGroup = 0x08, kMask = 0x10, kOthers = 0x20 };

constexpr unsigned kGroupAndOthers = 077;
unsigned Bits(unsigned group, unsigned others) { return group << 3 | others; }

// The position of the rights of entry @p tag; 0 if the list has no such entry.
std::size_t RightsOf(std::span<const std::byte> list, Tag tag) {
    for (std::size_t at = kHeader; at < list.size(); at += kEntry) {
        if (GetNumber<std::uint16_t>(list, at) == tag) return at + kRightsAt;
    }
    return 0;
}

unsigned Rights(std::span<const std::byte> list, Tag tag, unsigned without) {
    const std::size_t at = RightsOf(list, tag);
    return at != 0 ? GetNumber<std::uint16_t>(list, at) : without;
}

void SetRights(std::span<std::byte> list, Tag tag, unsigned rights) {
    const std::size_t at = RightsOf(list, tag);
    if (at != 0) PutNumber(list, at, static_cast<std::uint16_t>(rights));
}

bool IsUnderstood(std::span<const std::byte> list) {
    return list.size() > kHeader && (list.size() - kHeader) % kEntry == 0 &&
           GetNumber<std::uint32_t>(list, 0) == kVersion && RightsOf(list, kOwnGroup) != 0;
}

}  // namespace

AccessList::AccessList(const FileAttributes& file) {
    std::optional<std::vector<std::byte>> bytes = file.Get(kName);
    if (bytes && IsUnderstood(*bytes)) m_bytes = *std::move(bytes);
}

unsigned AccessList::GroupAndOthers(unsigned mode) const {
    if (IsEmpty()) return mode & kGroupAndOthers;
    return Bits(Rights(m_bytes, kOwnGroup, 0) & Rights(m_bytes, kMask, 07), mode & 07);
}

unsigned AccessList::WithoutNames(unsigned mode) const {
    unsigned bits = GroupAndOthers(mode);
    for (std::size_t at = kHeader; at < m_bytes.size(); at += kEntry) {
        const auto tag = GetNumber<std::uint16_t>(m_bytes, at);
        if (tag != kNamedUser && tag != kNamedGroup) continue;
        const unsigned may = GetNumber<std::uint16_t>(m_bytes, at + kRightsAt) & Rights(m_bytes, kMask, 07);
        bits &= Bits(may, may);
    }
    return bits;
}

unsigned AccessList::LimitGroupAndOthers(unsigned mode) {
    const unsigned bits = GroupAndOthers(mode);
    const unsigned both = bits >> 3 & bits & 07;
    if (IsEmpty()) return (mode & ~kGroupAndOthers) | Bits(both, both);
    SetRights(m_bytes, kOwnGroup, both);
    SetRights(m_bytes, kOthers, both);
    return (mode & ~07U) | both;
}

int AccessList::GiveTo(int file) const {
    if (IsEmpty() && ::fgetxattr(file, kName, nullptr, 0) < 0)
        return errno == ENODATA || IsNotAllowed(errno) ? 0 : errno;
    const int given =
        IsEmpty() ? ::fremovexattr(file, kName) : ::fsetxattr(file, kName, m_bytes.data(), m_bytes.size(), 0);
    return given == 0 ? 0 : errno;
}

}  // namespace qel
