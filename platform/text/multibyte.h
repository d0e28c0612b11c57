#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/code_page.h"

// Character-wise handling of 8-bit text. In code page 932 the trail byte of a double-byte character may equal a letter,
// a backslash or a bracket, so every scan steps by characters. Other pages have no lead bytes here: 65001 too is
// handled by bytes, which is safe because none of its bytes above 7F is an ASCII one.
namespace qel {

/// Whether @p byte starts a double-byte character in @p page.
constexpr bool IsLeadByte(unsigned char byte, UINT page) {
    return page == kCodePageJapanese && ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC));
}

/// The same in the process's code page.
inline bool IsLeadByte(unsigned char byte) { return byte >= 0x81 && IsLeadByte(byte, CodePage()); }

/// Bytes of the character at @p at (below the length): 2 for a lead byte followed by a non-zero byte, else 1.
constexpr std::size_t CharacterSize(std::string_view text, std::size_t at, UINT page) {
    return IsLeadByte(static_cast<unsigned char>(text[at]), page) && at + 1 < text.size() && text[at + 1] != 0 ? 2 : 1;
}

/// Position of a character-wise match at or after @p from, or npos. @p from is a character boundary. Half a character,
/// a lead byte alone or at the end of the wanted text, is never found.
QELLIB10_API std::size_t FindCharacter(std::string_view text, char wanted, std::size_t from = 0);
QELLIB10_API std::size_t FindLastCharacter(std::string_view text, char wanted);
QELLIB10_API std::size_t FindText(std::string_view text, std::string_view wanted, std::size_t from = 0);

/// The longest start of @p text with at most @p bytes bytes that splits no double-byte character.
QELLIB10_API std::string_view LeftWhole(std::string_view text, std::size_t bytes);

/// Order of two texts by characters (a double-byte one counts as lead * 256 + trail): -1, 0, 1. A lone lead byte ends
/// its text. The folding form treats A-Z, also full-width, as lower-case letters.
QELLIB10_API int CompareText(std::string_view a, std::string_view b);
QELLIB10_API int CompareTextFolded(std::string_view a, std::string_view b);

/// Whether two names look the same to a person: equal except for the case of Latin (also full-width), Greek and
/// Cyrillic letters. Full and half width, hiragana and katakana stay different.
QELLIB10_API bool SameName(std::string_view a, std::string_view b);

/// A text that is equal for two names exactly when SameName holds.
QELLIB10_API std::string FoldName(std::string_view name);

/// Copies whole characters of @p source, up to its terminating zero and at most @p bytes bytes, and fills the rest of
/// the @p bytes with zeros. A lead byte is not copied if its trail byte does not fit or is missing. Writes no
/// terminator after @p bytes. @p target may be @p source.
QELLIB10_API void CopyBounded(char* target, const char* source, std::size_t bytes);

}  // namespace qel
