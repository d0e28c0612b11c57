#include "qellib10/platform/text/text_decoder.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

unsigned char ByteAt(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

void Append(std::string& utf8, char32_t character) {
    char units[kMaxUnits];
    utf8.append(units, WriteCharacter(units, character));
}

}  // namespace

TextDecoder::TextDecoder(FileEncoding encoding, UINT page)
    : m_encoding(encoding), m_page(encoding == FileEncoding::kCodePage ? &TableOfPage(page) : nullptr) {}

bool TextDecoder::Decode(std::string_view bytes, std::string& utf8) {
    std::string joined;
    if (!m_part.empty()) {
        joined = std::exchange(m_part, {}).append(bytes);
        bytes = joined;
    }
    Step last = Step::kCharacter;
    const std::size_t size = DecodeWhole(bytes, utf8, last);
    m_decoded += size;
    if (last == Step::kIncomplete) m_part.assign(bytes.substr(size));
    return last != Step::kInvalid;
}

// @return bytes of the characters before the end, or before the one that is incomplete or invalid
std::size_t TextDecoder::DecodeWhole(std::string_view bytes, std::string& utf8, Step& last) const {
    std::size_t at = 0;
    while (at < bytes.size()) {
        const bool hasAscii = m_encoding != FileEncoding::kUtf16Little && m_encoding != FileEncoding::kUtf16Big;
        if (hasAscii) {
            const std::size_t end = m_encoding == FileEncoding::kUnchecked ? bytes.size() : EndOfAscii(bytes, at);
            const std::size_t plain = std::min(bytes.substr(0, end).find('\0', at), end);
            utf8.append(bytes, at, plain - at);
            at = plain;
            if (at == bytes.size()) break;
        }
        last = DecodeOne(bytes, at, utf8);
        if (last != Step::kCharacter) break;
    }
    return at;
}

TextDecoder::Step TextDecoder::DecodeOne(std::string_view bytes, std::size_t& at, std::string& utf8) const {
    switch (m_encoding) {
        case FileEncoding::kUtf8:
            return DecodeUtf8(bytes, at, utf8);
        case FileEncoding::kUtf16Little:
        case FileEncoding::kUtf16Big:
            return DecodeUtf16(bytes, at, utf8);
        case FileEncoding::kCodePage:
            return DecodePage(bytes, at, utf8);
        case FileEncoding::kUnchecked:
            break;
    }
    return Step::kInvalid;  // a zero byte
}

TextDecoder::Step TextDecoder::DecodeUtf8(std::string_view bytes, std::size_t& at, std::string& utf8) const {
    auto [continuations, low, high] = SequenceOf(ByteAt(bytes, at));
    if (continuations == 0) return Step::kInvalid;
    std::size_t next = at + 1;
    for (; continuations > 0; --continuations, ++next, low = 0x80, high = 0xBF) {
        if (next == bytes.size()) return Step::kIncomplete;
        if (ByteAt(bytes, next) < low || ByteAt(bytes, next) > high) return Step::kInvalid;
    }
    utf8.append(bytes, at, next - at);
    at = next;
    return Step::kCharacter;
}

char16_t TextDecoder::UnitAt(std::string_view bytes, std::size_t at) const {
    const std::size_t high = m_encoding == FileEncoding::kUtf16Big ? 0 : 1;
    return static_cast<char16_t>(ByteAt(bytes, at + high) << 8 | ByteAt(bytes, at + 1 - high));
}

TextDecoder::Step TextDecoder::DecodeUtf16(std::string_view bytes, std::size_t& at, std::string& utf8) const {
    if (bytes.size() - at < 2) return Step::kIncomplete;
    char16_t units[2] = {UnitAt(bytes, at)};
    if (units[0] == 0 || IsLowSurrogate(units[0])) return Step::kInvalid;
    std::size_t count = 1;
    if (IsHighSurrogate(units[0])) {
        if (bytes.size() - at < 4) return Step::kIncomplete;
        units[count++] = UnitAt(bytes, at + 2);
        if (!IsLowSurrogate(units[1])) return Step::kInvalid;
    }
    std::size_t unit = 0;
    Append(utf8, NextCharacter(std::u16string_view(units, count), unit));
    at += 2 * count;
    return Step::kCharacter;
}

TextDecoder::Step TextDecoder::DecodePage(std::string_view bytes, std::size_t& at, std::string& utf8) const {
    const unsigned char first = ByteAt(bytes, at);
    if (IsLeadByte(first, m_page->page)) {
        if (bytes.size() - at < 2) return Step::kIncomplete;
        const char16_t character = m_page->pairs[first * 256U + ByteAt(bytes, at + 1)];
        if (character == 0) return Step::kInvalid;
        Append(utf8, character);
        at += 2;
        return Step::kCharacter;
    }
    if (m_page->singles[first] == 0) return Step::kInvalid;
    Append(utf8, m_page->singles[first]);
    ++at;
    return Step::kCharacter;
}

}  // namespace qel
