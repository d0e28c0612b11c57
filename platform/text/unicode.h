#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// The Unicode forms, one character at a time; invalid input reads as U+FFFD. Inline, because conversions spend their
// time here.
namespace qel {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// How many continuation bytes a first byte of UTF-8 needs, and the range of the first of them: it excludes forms that
// are longer than needed, surrogates and everything above U+10FFFF (Unicode, table 3-7).
struct Utf8Sequence {
    int continuations;
    unsigned char low = 0x80, high = 0xBF;
};

constexpr Utf8Sequence SequenceOf(unsigned char first) {
    if (first >= 0xC2 && first <= 0xDF) return {1};
    if (first == 0xE0) return {2, 0xA0};
    if (first == 0xED) return {2, 0x80, 0x9F};
    if (first >= 0xE1 && first <= 0xEF) return {2};
    if (first == 0xF0) return {3, 0x90};
    if (first == 0xF4) return {3, 0x80, 0x8F};
    if (first >= 0xF1 && first <= 0xF3) return {3};
    return {0};
}

/// The position of the first non-ASCII byte or unit at or after @p from, or the length.
inline std::size_t EndOfAscii(std::string_view text, std::size_t from) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::size_t at = from;
    for (std::uint64_t eight; text.size() - at >= sizeof eight; at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if ((eight & kHighBits) != 0) break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}
inline std::size_t EndOfAscii(std::u16string_view text, std::size_t from) {
    while (from < text.size() && text[from] < 0x80) ++from;
    return from;
}

/// The character at @p at (below the length), which moves past it. Invalid UTF-8 gives one U+FFFD for the longest start
/// of a character, so that no ASCII byte is ever swallowed; a lone surrogate gives one.
inline char32_t NextCharacter(std::string_view utf8, std::size_t& at) {
    const auto first = static_cast<unsigned char>(utf8[at++]);
    if (first < 0x80) return first;
    if ((first & 0xF0) == 0xE0 && utf8.size() - at >= 2) {  // three bytes: most text that is not ASCII
        const auto second = static_cast<unsigned char>(utf8[at]);
        const auto third = static_cast<unsigned char>(utf8[at + 1]);
        const char32_t character = (first & 0x0FU) << 12 | (second & 0x3FU) << 6 | (third & 0x3FU);
        const bool isSurrogate = (character & 0xF800) == 0xD800;
        if ((second & 0xC0) == 0x80 && (third & 0xC0) == 0x80 && character >= 0x800 && !isSurrogate) {
            at += 2;
            return character;
        }
    }
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
inline char32_t NextCharacter(std::u16string_view utf16, std::size_t& at) {
    const char16_t unit = utf16[at++];
    if (IsHighSurrogate(unit) && at < utf16.size() && IsLowSurrogate(utf16[at])) {
        return 0x10000 + ((unit - 0xD800U) << 10) + (utf16[at++] - 0xDC00U);
    }
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacementCharacter : unit;
}

/// The largest number of units of one character.
inline constexpr std::size_t kMaxUnits = 4;

/// Writes @p character, a Unicode scalar value, at @p to.
/// @return the position after it, at most kMaxUnits later
inline char* WriteCharacter(char* to, char32_t character) {
    const auto write = [&](char32_t byte) { *to++ = static_cast<char>(byte); };
    const auto writeContinuation = [&](int shift) { write(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        write(character);
        return to;
    }
    if (character < 0x800) {
        write(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        write(0xE0 | character >> 12);
        writeContinuation(6);
    } else {
        write(0xF0 | character >> 18);
        writeContinuation(12);
        writeContinuation(6);
    }
    writeContinuation(0);
    return to;
}
inline char16_t* WriteCharacter(char16_t* to, char32_t character) {
    if (character < 0x10000) {
        *to++ = static_cast<char16_t>(character);
    } else {
        *to++ = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
        *to++ = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    }
    return to;
}

}  // namespace qel
