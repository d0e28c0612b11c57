#include "qellib10/platform/text/utf8_name.h"

#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

// The capital letters that code page 932 has.
constexpr char32_t Folded(char32_t letter) {
    const auto isWithin = [letter](char32_t first, char32_t last) { return letter >= first && letter <= last; };
    const bool isGreek = isWithin(0x391, 0x3A1) || isWithin(0x3A3, 0x3A9);
    const bool isLatin = isWithin('A', 'Z') || isWithin(0xFF21, 0xFF3A);
    if (isLatin || isGreek || isWithin(0x410, 0x42F)) return letter + 0x20;
    return letter == 0x401 ? 0x451 : letter;
}

}  // namespace

// Bytes that are no UTF-8 stay as they are, so that two such names are never one by mistake.
std::string FoldUtf8Name(std::string_view name) {
    std::string folded(name);
    std::size_t ascii = 0;
    for (; ascii < name.size() && static_cast<unsigned char>(name[ascii]) < 0x80; ++ascii) {
        const char c = name[ascii];
        if (c >= 'A' && c <= 'Z') folded[ascii] = static_cast<char>(c + 0x20);
    }
    if (ascii == name.size()) return folded;
    folded.resize(ascii);
    for (std::size_t at = ascii; at < name.size();) {
        const std::size_t start = at;
        const char32_t letter = NextCharacter(name, at), small = Folded(letter);
        char units[kMaxUnits];
        folded += small == letter ? name.substr(start, at - start)
                                  : std::string_view(units, WriteCharacter(units, small) - units);
    }
    return folded;
}

bool SameUtf8Name(std::string_view a, std::string_view b) { return a == b || FoldUtf8Name(a) == FoldUtf8Name(b); }

}  // namespace qel
