#include "qellib10/platform/text/unicode.h"

#include <cstdint>
#include <cstring>

namespace qel {
namespace {

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Continuation bytes that a first byte of UTF-8 asks for, and the range of the first of them: it keeps out forms that
// are longer than needed, surrogates and what lies above U+10FFFF (Unicode, table 3-7).
struct Sequence {
    int continuations;
    unsigned char low = 0x80, high = 0xBF;
};

constexpr Sequence SequenceOf(unsigned char first) {
    if (first >= 0xC2 && first <= 0xDF) return {1};
    if (first == 0xE0) return {2, 0xA0};
    if (first == 0xED) return {2, 0x80, 0x9F};
    if (first >= 0xE1 && first <= 0xEF) return {2};
    if (first == 0xF0) return {3, 0x90};
    if (first == 0xF4) return {3, 0x80, 0x8F};
    if (first >= 0xF1 && first <= 0xF3) return {3};
    return {0};
}

}  // namespace

std::size_t EndOfAscii(std::string_view text, std::size_t from) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::size_t at = from;
    for (std::uint64_t eight; text.size() - at >= sizeof eight; at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if ((eight & kHighBits) != 0) break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}

std::size_t EndOfAscii(std::u16string_view text, std::size_t from) {
    while (from < text.size() && text[from] < 0x80) ++from;
    return from;
}

char32_t NextCharacter(std::string_view utf8, std::size_t& at) {
    const auto first = static_cast<unsigned char>(utf8[at++]);
    if (first < 0x80) return first;
    auto [continuations, low, high] = SequenceOf(first);
    if (continuations == 0) return kReplacementCharacter;
    char32_t character = first & (0x3FU >> continuations);
    for (; continuations > 0; --continuations, low = 0x80, high = 0xBF) {
        if (at == utf8.size()) return kReplacementCharacter;
        const auto byte = static_cast<unsigned char>(utf8[at]);
        if (byte < low || byte > high) return kReplacementCharacter;
        character = character << 6 | (byte & 0x3FU);
        ++at;
    }
    return character;
}

char32_t NextCharacter(std::u16string_view utf16, std::size_t& at) {
    const char16_t unit = utf16[at++];
    if (IsHighSurrogate(unit) && at < utf16.size() && IsLowSurrogate(utf16[at])) {
        return 0x10000 + ((unit - 0xD800U) << 10) + (utf16[at++] - 0xDC00U);
    }
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacementCharacter : unit;
}

void AppendCharacter(std::string& utf8, char32_t character) {
    const auto append = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
    const auto appendContinuation = [&](int shift) { append(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) return append(character);
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        appendContinuation(6);
    } else {
        append(0xF0 | character >> 18);
        appendContinuation(12);
        appendContinuation(6);
    }
    appendContinuation(0);
}

void AppendCharacter(std::u16string& utf16, char32_t character) {
    if (character < 0x10000) {
        utf16 += static_cast<char16_t>(character);
        return;
    }
    utf16 += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
    utf16 += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

}  // namespace qel
