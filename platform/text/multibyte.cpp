#include "qellib10/platform/text/multibyte.h"

#include <algorithm>
#include <cstring>

namespace qel {
namespace {

using std::size_t;
constexpr size_t npos = std::string_view::npos;

constexpr bool Within(unsigned value, unsigned first, unsigned last) { return value >= first && value <= last; }

// Characters whose bytes are all below 40 hex, and those of pages without lead bytes, can be searched for bytewise.
constexpr bool IsNeverTrail(char wanted) { return static_cast<unsigned char>(wanted) < 0x40; }

// Reads one character after another as lead * 256 + trail; 0 at the end, also before a lone lead byte.
class CharacterReader {
public:
    CharacterReader(std::string_view text, UINT page) : m_text(text), m_page(page) {}

    unsigned Next() {
        if (m_at >= m_text.size()) return 0;
        const auto byte = static_cast<unsigned char>(m_text[m_at]);
        if (!IsLeadByte(byte, m_page)) {
            ++m_at;
            return byte;
        }
        if (CharacterSize(m_text, m_at, m_page) == 1) {
            m_at = m_text.size();
            return 0;
        }
        const unsigned character = byte * 256U + static_cast<unsigned char>(m_text[m_at + 1]);
        m_at += 2;
        return character;
    }

private:
    std::string_view m_text;
    UINT m_page;
    size_t m_at = 0;
};

constexpr unsigned FoldLatin(unsigned character) {
    if (Within(character, 'A', 'Z')) return character + 0x20;
    if (Within(character, 0x8260, 0x8279)) return character + 0x21;
    return character;
}

constexpr unsigned FoldLetter(unsigned character) {
    if (Within(character, 0x839F, 0x83B6)) return character + 0x20;  // Greek
    if (Within(character, 0x8440, 0x844E)) return character + 0x30;  // Cyrillic; the lower row leaves out 847F
    if (Within(character, 0x844F, 0x8460)) return character + 0x31;
    return FoldLatin(character);
}

template <typename Fold> int CompareBy(std::string_view a, std::string_view b, Fold fold) {
    const UINT page = CodePage();
    CharacterReader left(a, page);
    CharacterReader right(b, page);
    for (;;) {
        const unsigned x = fold(left.Next());
        const unsigned y = fold(right.Next());
        if (x != y) return x < y ? -1 : 1;
        if (x == 0) return 0;
    }
}

}  // namespace

size_t FindCharacter(std::string_view text, char wanted, size_t from) {
    if (from > text.size()) return npos;
    const UINT page = CodePage();
    if (page != kCodePageJapanese || IsNeverTrail(wanted)) return text.find(wanted, from);
    for (size_t at = from; at < text.size();) {
        const size_t size = CharacterSize(text, at, page);
        if (size == 1 && text[at] == wanted) return at;
        at += size;
    }
    return npos;
}

size_t FindLastCharacter(std::string_view text, char wanted) {
    size_t last = npos;
    for (size_t at = FindCharacter(text, wanted); at != npos; at = FindCharacter(text, wanted, at + 1)) last = at;
    return last;
}

size_t FindText(std::string_view text, std::string_view wanted, size_t from) {
    if (from > text.size()) return npos;
    const UINT page = CodePage();
    if (page != kCodePageJapanese || wanted.empty()) return text.find(wanted, from);
    for (size_t at = from; at + wanted.size() <= text.size(); at += CharacterSize(text, at, page)) {
        if (text.substr(at, wanted.size()) == wanted) return at;
    }
    return npos;
}

std::string_view LeftWhole(std::string_view text, size_t bytes) {
    if (bytes >= text.size()) return text;
    const UINT page = CodePage();
    size_t at = 0;
    while (at < bytes) {
        // A lead byte claims two bytes here even where nothing follows it: half a character is never taken.
        const size_t size = IsLeadByte(static_cast<unsigned char>(text[at]), page) ? 2 : 1;
        if (at + size > bytes) break;
        at += size;
    }
    return text.substr(0, at);
}

int CompareText(std::string_view a, std::string_view b) {
    return CompareBy(a, b, [](unsigned character) { return character; });
}

int CompareTextFolded(std::string_view a, std::string_view b) { return CompareBy(a, b, FoldLatin); }

bool SameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && (a == b || FoldName(a) == FoldName(b));
}

std::string FoldName(std::string_view name) {
    const UINT page = CodePage();
    std::string folded(name);
    for (size_t at = 0; at < folded.size();) {
        const size_t size = CharacterSize(folded, at, page);
        unsigned character = static_cast<unsigned char>(folded[at]);
        if (size == 2) {
            character = FoldLetter(character * 256 + static_cast<unsigned char>(folded[at + 1]));
            folded[at] = static_cast<char>(character >> 8);
            folded[at + 1] = static_cast<char>(character & 0xFF);
        } else {
            folded[at] = static_cast<char>(FoldLatin(character));
        }
        at += size;
    }
    return folded;
}

void CopyBounded(char* target, const char* source, size_t bytes) {
    const std::string_view whole(source, ::strnlen(source, bytes + 1));
    std::string_view taken = LeftWhole(whole, bytes);
    // A text that ends in a lone lead byte within the bound loses it as well.
    const size_t copied = taken.copy(target, bytes);
    std::fill(target + copied, target + bytes, '\0');
}

}  // namespace qel
