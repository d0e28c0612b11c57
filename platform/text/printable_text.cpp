#include "qellib10/platform/text/printable_text.h"

#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // a character like any other where it is in the text

bool IsIn(char32_t character, char32_t first, char32_t last) { return character >= first && character <= last; }

bool ChangesOrder(char32_t character) {
    return character == 0x61C || IsIn(character, 0x200E, 0x200F) || IsIn(character, 0x2028, 0x202E) ||
           IsIn(character, 0x2066, 0x2069);
}

bool IsControl(char32_t character) {
    return character < 0x20 || IsIn(character, 0x7F, 0x9F) || ChangesOrder(character);
}

// The bytes of the next character, or of what is there in place of one.
struct Next {
    std::string_view bytes;
    char32_t character;

    bool IsValid() const { return character != kReplacementCharacter || bytes == kReplacement; }
};

Next NextOf(std::string_view utf8, std::size_t& at) {
    const std::size_t from = at;
    const char32_t character = NextCharacter(utf8, at);
    return {utf8.substr(from, at - from), character};
}

}  // namespace

std::string PrintableText(std::string_view utf8) {
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const Next next = NextOf(utf8, at);
        if (next.IsValid() && !IsControl(next.character)) {
            text += next.bytes;
        } else {
            text.append(next.bytes.size(), '?');
        }
    }
    return text;
}

bool IsUtf8(std::string_view text) {
    for (std::size_t at = EndOfAscii(text, 0); at < text.size(); at = EndOfAscii(text, at)) {
        if (!NextOf(text, at).IsValid()) return false;
    }
    return true;
}

}  // namespace qel
