#include "qellib10/platform/shell/elf_version.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::size_t kHeaderSize = 64;
constexpr std::size_t kClassAt = 4, kOrderAt = 5, kSegmentsAt = 32, kSegmentSizeAt = 54, kSegmentCountAt = 56;
constexpr std::byte kClass64{2}, kLittleEndian{1};
constexpr std::uint32_t kSegmentSize = 56, kMaxSegments = 1024;
constexpr std::size_t kTypeAt = 0, kOffsetAt = 8, kFileSizeAt = 32;  // in a segment's header
constexpr std::uint32_t kNoteSegment = 4;
constexpr std::uint64_t kMaxNotes = 64 * 1024;  // bytes in all; far more than linkers write

constexpr std::size_t kNoteHeaderSize = 12;
constexpr std::uint32_t kOurType = 1;
constexpr std::string_view kOurName("QELLIB1\0", 8);

std::string_view Chars(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Removes the text up to the next zero byte, or all of it, from the start of @p texts.
std::string_view TakeText(std::string_view& texts) {
    const std::string_view text = texts.substr(0, texts.find('\0'));
    texts.remove_prefix(std::min(text.size() + 1, texts.size()));
    return text;
}

std::optional<std::string> TextOfDescription(std::string_view texts, std::string_view key) {
    while (!texts.empty()) {
        const std::string_view name = TakeText(texts);
        const std::string_view value = TakeText(texts);
        if (!name.empty() && SameName(FromUtf8(name), key)) return FromUtf8(value);
    }
    return std::nullopt;
}

std::optional<std::string> TextOfNotes(std::span<const std::byte> notes, std::string_view key) {
    const auto take = [&](std::uint32_t size) {
        if (size > notes.size()) throw DataError("a note is longer than its segment");
        const std::span<const std::byte> taken = notes.first(size);
        notes = notes.subspan(std::min(notes.size(), std::size_t{size} + (4 - size % 4) % 4));
        return taken;
    };
    while (notes.size() >= kNoteHeaderSize) {
        const std::span<const std::byte> header = take(kNoteHeaderSize);
        const std::string_view name = Chars(take(NumberAt<std::uint32_t>(header, 0)));
        const std::string_view description = Chars(take(NumberAt<std::uint32_t>(header, 4)));
        if (name != kOurName || NumberAt<std::uint32_t>(header, 8) != kOurType) continue;
        if (auto text = TextOfDescription(description, key)) return text;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> TextOfElfNotes(const FileBytes& file, std::string_view key) {
    const std::vector<std::byte> header = file.At(0, kHeaderSize);
    if (header[kClassAt] != kClass64 || header[kOrderAt] != kLittleEndian) return std::nullopt;
    const std::uint32_t count = NumberAt<std::uint16_t>(header, kSegmentCountAt);
    if (count == 0) return std::nullopt;
    if (count > kMaxSegments || NumberAt<std::uint16_t>(header, kSegmentSizeAt) != kSegmentSize) {
        throw DataError("no table of segments");
    }
    const auto segments = file.At(NumberAt<std::uint64_t>(header, kSegmentsAt), count * kSegmentSize);
    std::uint64_t left = kMaxNotes;  // segments of a forged file may all contain the same bytes
    for (std::size_t at = 0; at < segments.size(); at += kSegmentSize) {
        const auto size = NumberAt<std::uint64_t>(segments, at + kFileSizeAt);
        if (NumberAt<std::uint32_t>(segments, at + kTypeAt) != kNoteSegment || size > left) continue;
        left -= size;
        const auto notes = file.At(NumberAt<std::uint64_t>(segments, at + kOffsetAt), static_cast<std::uint32_t>(size));
        if (auto text = TextOfNotes(notes, key)) return text;
    }
    return std::nullopt;
}

}  // namespace qel
