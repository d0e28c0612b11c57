#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

// Characters and names of XML, in UTF-8.
namespace qel {

/// Levels of elements in a document: no real data are nested deeper, and a reader would run out of stack.
inline constexpr int kDeepestXml = 512;

inline constexpr std::string_view kXmlBlanks = " \t\n\r";

constexpr bool IsXmlBlank(std::string_view text) {
    return text.find_first_not_of(kXmlBlanks) == std::string_view::npos;
}

constexpr bool IsXmlCharacter(char32_t c) {
    return c >= 0x20 ? (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF && c <= 0x10FFFF
                     : c == '\t' || c == '\n' || c == '\r';
}

/// Whether a name can start with the character; all non-ASCII characters are accepted.
constexpr bool IsXmlNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
           static_cast<unsigned char>(c) >= 0x80;
}
constexpr bool IsXmlNamePart(char c) { return IsXmlNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }
bool IsXmlName(std::string_view name);

/// Instead of strcmp: names are so short that a call takes longer.
constexpr bool IsSameXmlName(const char* a, const char* b) {
    while (*a == *b && *a != '\0') {
        ++a;
        ++b;
    }
    return *a == *b;
}

/// Whether the bytes are UTF-8, and every character is allowed in XML.
QELLIB10_INTERNAL_API bool IsUtf8OfXml(std::string_view text);

/// Whether the process's code page has every character.
bool IsInCodePage(std::string_view utf8);

/// The text with `?` for every character that XML does not allow.
std::string WithXmlCharacters(std::string utf8);

/// The text with CR LF and CR replaced by LF.
QELLIB10_INTERNAL_API std::string WithPlainLineEnds(std::string_view utf8);

/// The text with references replaced by their characters: `&amp;` `&lt;` `&gt;` `&quot;` `&apos;` `&#n;` `&#xh;`.
/// @throws DataError for any other `&`
QELLIB10_INTERNAL_API std::string WithoutReferences(std::string_view utf8);

}  // namespace qel
