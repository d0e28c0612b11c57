#include "qellib10/platform/shell/version_block.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "qellib10/platform/shell/file_bytes.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t kHeaderSize = 6;
constexpr std::size_t kValueLengthAt = 2, kTypeAt = 4;
constexpr std::uint16_t kText = 1;
constexpr std::size_t kLongestName = 256;  // UTF-16 units

constexpr std::size_t Aligned(std::size_t at) { return (at + 3) / 4 * 4; }

// The units from @p at up to a zero unit or @p end.
std::u16string UnitsAt(Bytes bytes, std::size_t at, std::size_t end) {
    std::u16string units;
    for (; at + 2 <= end; at += 2) {
        const auto unit = NumberAt<std::uint16_t>(bytes, at);
        if (unit == 0) break;
        units += static_cast<char16_t>(unit);
    }
    return units;
}

// A block of the resource; positions count from the start of the resource.
class Block {
public:
    // @param limit where the block around it ends
    Block(Bytes resource, std::size_t at, std::size_t limit);

    std::optional<Block> Child(std::string_view name) const;
    std::string Text() const { return FromUtf16(UnitsAt(m_resource, m_value, m_valueEnd)); }
    std::size_t Value() const { return m_value; }
    std::size_t ValueEnd() const { return m_valueEnd; }
    const std::string& Name() const { return m_name; }

private:
    Bytes m_resource;
    std::string m_name;
    std::size_t m_value = 0, m_valueEnd = 0, m_end = 0;
};

Block::Block(Bytes resource, std::size_t at, std::size_t limit) : m_resource(resource) {
    const std::size_t length = NumberAt<std::uint16_t>(resource, at);
    if (length < kHeaderSize || length > limit - at) throw DataError("a version block longer than what holds it");
    m_end = at + length;
    const std::u16string name = UnitsAt(resource, at + kHeaderSize, m_end);
    if (name.size() > kLongestName) throw DataError("the name of a version block is too long");
    m_name = FromUtf16(name);
    m_value = std::min(Aligned(at + kHeaderSize + 2 * (name.size() + 1)), m_end);
    const std::size_t unit = NumberAt<std::uint16_t>(resource, at + kTypeAt) == kText ? 2 : 1;
    const std::size_t size = unit * NumberAt<std::uint16_t>(resource, at + kValueLengthAt);
    m_valueEnd = std::min(m_value + size, m_end);
}

std::optional<Block> Block::Child(std::string_view name) const {
    for (std::size_t at = Aligned(m_valueEnd); at < m_end;) {
        Block child(m_resource, at, m_end);
        if (SameName(child.Name(), name)) return child;
        at = Aligned(child.m_end);
    }
    return std::nullopt;
}

std::optional<Block> ChildOf(const std::optional<Block>& block, std::string_view name) {
    return block ? block->Child(name) : std::nullopt;
}

}  // namespace

std::optional<std::string> TextOfVersionBlock(Bytes resource, std::string_view key) {
    if (resource.empty()) return std::nullopt;
    const Block root(resource, 0, resource.size());
    if (root.Name() != "VS_VERSION_INFO") throw DataError("no version resource");
    const std::optional<Block> translation = ChildOf(root.Child("VarFileInfo"), "Translation");
    const std::optional<Block> languages = root.Child("StringFileInfo");
    if (!translation || !languages) return std::nullopt;
    for (std::size_t at = translation->Value(); at + 4 <= translation->ValueEnd(); at += 4) {
        char name[9];
        std::snprintf(name, sizeof name, "%04x%04x", NumberAt<std::uint16_t>(resource, at),
                      NumberAt<std::uint16_t>(resource, at + 2));
        const std::optional<Block> text = ChildOf(languages->Child(name), key);
        if (text) return text->Text();
    }
    return std::nullopt;
}

}  // namespace qel
