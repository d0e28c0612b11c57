#include "qellib10/platform/text/printable_text.h"

#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // a character like any other where it is in the text

bool IsControl(char32_t character) { return character < 0x20 || (character >= 0x7F && character < 0xA0); }

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
