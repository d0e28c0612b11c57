#include "qellib10/platform/xml/xml_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

// A loop without exits, over bytes only, which the compiler turns into vector instructions.
bool HasControls(std::string_view text) {
    unsigned char found = 0;
    for (const unsigned char c : text) {
        const bool isControl = (c < 0x20) & (c != '\t') & (c != '\n') & (c != '\r');
        found |= static_cast<unsigned char>(isControl);
    }
    return found != 0;
}

std::optional<char32_t> NumberOf(std::string_view digits, int base) {
    std::uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, base);
    if (error != std::errc() || last != end) return std::nullopt;
    return number;
}

// The text between `&` and `;`.
std::optional<char32_t> CharacterOf(std::string_view reference) {
    constexpr std::array<std::pair<std::string_view, char32_t>, 5> kNames = {
        {{"amp", U'&'}, {"lt", U'<'}, {"gt", U'>'}, {"quot", U'"'}, {"apos", U'\''}}};
    if (reference.starts_with("#x")) return NumberOf(reference.substr(2), 16);
    if (reference.starts_with('#')) return NumberOf(reference.substr(1), 10);
    const auto found = std::ranges::find(kNames, reference, &std::pair<std::string_view, char32_t>::first);
    return found != kNames.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace

bool IsXmlName(std::string_view name) {
    return !name.empty() && IsXmlNameStart(name[0]) && std::ranges::all_of(name, IsXmlNamePart) && IsUtf8OfXml(name);
}

bool IsUtf8OfXml(std::string_view text) {
    if (HasControls(text)) return false;
    for (std::size_t at = EndOfAscii(text, 0); at < text.size(); at = EndOfAscii(text, at)) {
        const std::size_t begin = at;
        const char32_t character = NextCharacter(text, at);
        if (!IsXmlCharacter(character)) return false;
        if (character == kReplacementCharacter && text.substr(begin, at - begin) != kReplacementUtf8) return false;
    }
    return true;
}

bool IsInCodePage(std::string_view utf8) {
    return EndOfAscii(utf8, 0) == utf8.size() || FromUtf8(utf8) == FromUtf8WithReferences(utf8);
}

std::string WithXmlCharacters(std::string utf8) {
    if (IsUtf8OfXml(utf8)) return utf8;
    std::string result;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t begin = at;
        const bool isOne = IsXmlCharacter(NextCharacter(utf8, at));
        result += isOne ? std::string_view(utf8).substr(begin, at - begin) : "?";
    }
    return result;
}

std::string WithPlainLineEnds(std::string_view utf8) {
    std::string result;
    result.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t end = std::min(utf8.find('\r', at), utf8.size());
        result += utf8.substr(at, end - at);
        at = end;
        if (at == utf8.size()) break;
        result += '\n';
        at += utf8.substr(at).starts_with("\r\n") ? 2 : 1;
    }
    return result;
}

std::string WithoutReferences(std::string_view utf8) {
    std::string result;
    for (std::size_t at = 0;;) {
        const std::size_t begin = std::min(utf8.find('&', at), utf8.size());
        result += utf8.substr(at, begin - at);
        if (begin == utf8.size()) return result;
        const std::size_t end = std::min(utf8.find(';', begin), utf8.size());
        const auto character = CharacterOf(utf8.substr(begin + 1, end - begin - 1));
        if (end == utf8.size() || !character || !IsXmlCharacter(*character))
            throw DataError("a reference to nothing known");
        std::array<char, kMaxUnits> units;
        result.append(units.data(), WriteCharacter(units.data(), *character));
        at = end + 1;
    }
}

}  // namespace qel
