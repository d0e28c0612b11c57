#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The Unicode forms character by character; ill-formed input reads as U+FFFD.
namespace qel {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// The position of the first byte or unit at or behind @p from that is not ASCII, or the length.
std::size_t EndOfAscii(std::string_view text, std::size_t from);
std::size_t EndOfAscii(std::u16string_view text, std::size_t from);

/// The character at @p at (below the length), which moves behind it. Ill-formed UTF-8 gives one U+FFFD for the longest
/// beginning of a character, so that no ASCII byte is ever swallowed; a lone surrogate gives one.
char32_t NextCharacter(std::string_view utf8, std::size_t& at);
char32_t NextCharacter(std::u16string_view utf16, std::size_t& at);

/// Appends @p character, a Unicode scalar value.
void AppendCharacter(std::string& utf8, char32_t character);
void AppendCharacter(std::u16string& utf16, char32_t character);

}  // namespace qel
