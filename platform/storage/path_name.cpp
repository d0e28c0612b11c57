#include <algorithm>
#include <optional>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::string_view kForbiddenInNames = "?*\\/";

bool IsPlain(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::size_t Occurrences(std::string_view text, std::string_view wanted) {
    std::size_t count = 0;
    for (std::size_t at = text.find(wanted); at != std::string_view::npos; at = text.find(wanted, at + wanted.size()))
        ++count;
    return count;
}

std::size_t CharacterOccurrences(std::string_view text, std::string_view wanted) {
    std::size_t count = 0;
    for (std::size_t at = FindText(text, wanted); at != std::string_view::npos;
         at = FindText(text, wanted, at + wanted.size())) {
        ++count;
    }
    return count;
}

// The converter writes one fixed character for invalid bytes; a name with such bytes is invalid.
bool IsWhole(std::string_view text, std::string_view utf8) {
    switch (CodePage()) {
        case kCodePageJapanese:
            return Occurrences(utf8, "\xE3\x83\xBB") == CharacterOccurrences(text, "\x81\x45");
        case kCodePageUtf8:
            return Occurrences(utf8, "\xEF\xBF\xBD") == Occurrences(text, "\xEF\xBF\xBD");
        default:
            return true;
    }
}

std::optional<std::string> Converted(std::string_view text) {
    if (IsPlain(text)) return std::string(text);
    std::string utf8 = ToUtf8(text);
    if (!IsWhole(text, utf8)) return std::nullopt;
    return utf8;
}

// The byte written as `?` and two digits at the start of @p text.
std::optional<char> EscapedByte(std::string_view text) {
    if (text.size() < 3) return std::nullopt;
    const std::size_t high = kDigits.find(text[1]);
    const std::size_t low = kDigits.find(text[2]);
    if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
    return static_cast<char>(high * 16 + low);
}

void AppendEscaped(std::string& out, std::string_view bytes) {
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out += '?';
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    }
}

// Bytes of the valid UTF-8 character at the start of @p text, else 1.
std::size_t Utf8Size(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (size > text.size()) return 1;
    const bool whole = std::ranges::all_of(text.substr(1, size - 1), [](char c) { return (c & 0xC0) == 0x80; });
    return whole ? size : 1;
}

bool Returns(std::string_view posix, std::string_view text) {
    const std::optional<std::string> back = Converted(text);
    return back && *back == posix;
}

}  // namespace

std::string ToPosixName(std::string_view name) {
    std::string posix;
    for (std::size_t at = 0; at < name.size();) {
        const std::size_t escape = std::min(FindCharacter(name, '?', at), name.size());
        const std::optional<std::string> part = Converted(name.substr(at, escape - at));
        if (!part) ThrowCode(kBadName, name);
        posix += *part;
        at = escape;
        if (at == name.size()) break;
        const std::optional<char> byte = EscapedByte(name.substr(at));
        if (!byte) ThrowCode(kBadName, name);
        posix += *byte;
        at += 3;
    }
    // An escape could bring in characters that change the path; a star is a pattern that was not expanded.
    const bool changesPath = posix.find('/') != std::string_view::npos || posix.find('\0') != std::string_view::npos ||
                             (name.find('?') != std::string_view::npos && (posix == "." || posix == ".."));
    if (posix.empty() || changesPath || FindCharacter(name, '*') != std::string_view::npos) ThrowCode(kBadName, name);
    return posix;
}

CString ToLibraryName(std::string_view posixName) {
    if (posixName.find_first_of(kForbiddenInNames) == std::string_view::npos) {
        if (IsPlain(posixName)) return CString(posixName);
        const std::string text = FromUtf8(posixName);
        if (Returns(posixName, text)) return CString(text);
    }
    std::string name;
    while (!posixName.empty()) {
        const std::string_view character = posixName.substr(0, Utf8Size(posixName));
        const std::string text = IsPlain(character) ? std::string(character) : FromUtf8(character);
        if (kForbiddenInNames.find(character) != std::string_view::npos || !Returns(character, text)) {
            AppendEscaped(name, character);
        } else {
            name += text;
        }
        posixName.remove_prefix(character.size());
    }
    return CString(name);
}

}  // namespace qel
