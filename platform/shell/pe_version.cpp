#include "qellib10/platform/shell/pe_version.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>

namespace qel {
namespace {

constexpr std::size_t kPeOffsetAt = 0x3C;
constexpr std::uint32_t kPeSignature = 0x00004550;  // "PE\0\0"
constexpr std::size_t kFileHeaderSize = 24;         // with the signature
constexpr std::size_t kSectionCountAt = 6, kOptionalSizeAt = 20;
constexpr std::uint16_t kMagic32 = 0x10B, kMagic64 = 0x20B;
constexpr std::size_t kDirectoryCountAt32 = 92, kDirectoryCountAt64 = 108;  // from the optional header
constexpr std::uint32_t kResourceDirectory = 2, kDirectorySize = 8;
constexpr std::uint16_t kMaxSections = 96;
constexpr std::uint32_t kSectionSize = 40;
constexpr std::size_t kSectionAddressAt = 12, kSectionSizeAt = 16, kSectionOffsetAt = 20;

constexpr std::uint32_t kNodeSize = 16, kEntrySize = 8;
constexpr std::size_t kNamedCountAt = 12, kNumberCountAt = 14;
constexpr std::uint32_t kIsNode = 0x80000000;
constexpr std::uint32_t kVersionType = 16;
constexpr std::uint32_t kLongestBlock = 0xFFFF;  // its length is a field of 16 bits

// A program file's headers: what is needed to turn addresses of the loaded program into offsets in the file.
class PeHeaders {
public:
    explicit PeHeaders(const FileBytes& file);

    // Address of the resources; 0 for none.
    std::uint32_t Resources() const { return m_resources; }
    std::uint64_t OffsetOf(std::uint32_t address) const;

private:
    std::uint32_t m_resources = 0;
    std::vector<std::byte> m_sections;
};

PeHeaders::PeHeaders(const FileBytes& file) {
    const std::uint64_t start = file.Number<std::uint32_t>(kPeOffsetAt);
    const std::vector<std::byte> header = file.At(start, kFileHeaderSize);
    if (NumberAt<std::uint32_t>(header, 0) != kPeSignature) throw DataError("no PE signature");
    const auto sections = NumberAt<std::uint16_t>(header, kSectionCountAt);
    if (sections > kMaxSections) throw DataError("too many sections");

    const std::uint64_t optional = start + kFileHeaderSize;
    const auto magic = file.Number<std::uint16_t>(optional);
    if (magic != kMagic32 && magic != kMagic64) throw DataError("no optional header");
    const std::uint64_t countAt = optional + (magic == kMagic32 ? kDirectoryCountAt32 : kDirectoryCountAt64);
    if (file.Number<std::uint32_t>(countAt) <= kResourceDirectory) return;
    m_resources = file.Number<std::uint32_t>(countAt + 4 + kResourceDirectory * kDirectorySize);
    m_sections = file.At(optional + NumberAt<std::uint16_t>(header, kOptionalSizeAt), sections * kSectionSize);
}

std::uint64_t PeHeaders::OffsetOf(std::uint32_t address) const {
    for (std::size_t at = 0; at < m_sections.size(); at += kSectionSize) {
        const auto first = NumberAt<std::uint32_t>(m_sections, at + kSectionAddressAt);
        const auto size = NumberAt<std::uint32_t>(m_sections, at + kSectionSizeAt);
        if (address < first || address - first >= size) continue;
        return std::uint64_t{NumberAt<std::uint32_t>(m_sections, at + kSectionOffsetAt)} + (address - first);
    }
    throw DataError("an address lies in no section");
}

// The offset field of the entry with number @p id, or of the first entry if no number is given.
std::optional<std::uint32_t> EntryOf(const FileBytes& file, std::uint64_t node, std::optional<std::uint32_t> id) {
    const std::vector<std::byte> header = file.At(node, kNodeSize);
    const std::uint32_t named = NumberAt<std::uint16_t>(header, kNamedCountAt);
    const std::uint32_t count = named + NumberAt<std::uint16_t>(header, kNumberCountAt);
    if (count == 0) return std::nullopt;
    if (!id) return file.Number<std::uint32_t>(node + kNodeSize + 4);
    const std::vector<std::byte> entries = file.At(node + kNodeSize, count * kEntrySize);
    for (std::size_t at = named * kEntrySize; at < entries.size(); at += kEntrySize) {
        if (NumberAt<std::uint32_t>(entries, at) == *id) return NumberAt<std::uint32_t>(entries, at + 4);
    }
    return std::nullopt;
}

// Exactly three levels, so that no tree can lead in a circle.
std::optional<std::uint64_t> FindVersionLeaf(const FileBytes& file, std::uint64_t tree) {
    const std::optional<std::uint32_t> type = EntryOf(file, tree, kVersionType);
    if (!type) return std::nullopt;
    std::uint32_t entry = *type;
    for (int level = 2; level <= 3; ++level) {
        if ((entry & kIsNode) == 0) throw DataError("a leaf at too high a level");
        const auto first = EntryOf(file, tree + (entry & ~kIsNode), std::nullopt);
        if (!first) throw DataError("a node without entries");
        entry = *first;
    }
    if ((entry & kIsNode) != 0) throw DataError("a leaf at too low a level");
    return tree + entry;
}

}  // namespace

std::vector<std::byte> ReadPeVersionBlock(const FileBytes& file) {
    const PeHeaders headers(file);
    if (headers.Resources() == 0) return {};
    const std::optional<std::uint64_t> leaf = FindVersionLeaf(file, headers.OffsetOf(headers.Resources()));
    if (!leaf) return {};
    const auto size = std::min(file.Number<std::uint32_t>(*leaf + 4), kLongestBlock);
    return file.At(headers.OffsetOf(file.Number<std::uint32_t>(*leaf)), size);
}

}  // namespace qel
