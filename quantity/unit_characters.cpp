#include "qellib10/quantity/unit_characters.h"

#include <algorithm>

#include "qellib10/platform/text/printable_text.h"

namespace qel {

std::size_t NameCharacter(std::string_view text) {
    if (text.empty()) return 0;
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        const bool isLetter = (first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z');
        return isLetter || IsDigit(text[0]) || std::string_view("_%'\"").find(text[0]) != std::string_view::npos ? 1
                                                                                                                 : 0;
    }
    const auto starts = [&](std::string_view sign) { return text.starts_with(sign); };
    if (std::ranges::any_of(kSuperscripts, starts) || std::ranges::any_of(kDots, starts)) return 0;
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) ++length;
    return length;
}

std::string Quoted(std::string_view text) { return '"' + PrintableText(text) + '"'; }

}  // namespace qel
