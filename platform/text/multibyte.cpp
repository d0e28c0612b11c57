#include "qellib10/platform/text/multibyte.h"

#include <algorithm>
#include <cstring>

namespace qel {
namespace {

using std::size_t;
constexpr size_t npos = std::string_view::npos;

constexpr bool Within(unsigned value, unsigned first, unsigned last) { return value >= first && value <= last; }

// A character starts after every byte that is not a lead byte, whatever is before it: so no walk from the start is
// needed.
constexpr bool FollowsNoLead(std::string_view text, size_t at, UINT page) {
    return at == 0 || !IsLeadByte(static_cast<unsigned char>(text[at - 1]), page);
}

// The text without a lone lead byte at its end.
std::string_view WholeCharacters(std::string_view text, UINT page) {
    if (text.empty() || !IsLeadByte(static_cast<unsigned char>(text.back()), page)) return text;
    size_t at = 0;
    while (at + 1 < text.size()) at += CharacterSize(text, at, page);
    return text.substr(0, at);
}

// A character's value in comparisons: its byte, or lead * 256 + trail.
unsigned CharacterAt(std::string_view text, size_t at, size_t size) {
    const unsigned first = static_cast<unsigned char>(text[at]);
    return size == 1 ? first : first * 256 + static_cast<unsigned char>(text[at + 1]);
}

// Reads the values of the characters one by one; 0 at the end and before a lone lead byte.
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
        const unsigned character = CharacterAt(m_text, m_at, 2);
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
    if (Within(character, 0x8440, 0x844E)) return character + 0x30;  // Cyrillic; the lower row skips 847F
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

size_t FindCharacter(std::string_view text, char wanted, size_t from) { return FindText(text, {&wanted, 1}, from); }

size_t FindLastCharacter(std::string_view text, char wanted) {
    const UINT page = CodePage();
    size_t last = text.rfind(wanted);
    if (last == npos || (FollowsNoLead(text, last, page) && !IsLeadByte(static_cast<unsigned char>(wanted), page)))
        return last;
    last = npos;
    for (size_t at = FindCharacter(text, wanted); at != npos; at = FindCharacter(text, wanted, at + 1)) last = at;
    return last;
}

size_t FindText(std::string_view text, std::string_view wanted, size_t from) {
    const UINT page = CodePage();
    if (page != kCodePageJapanese || wanted.empty()) return text.find(wanted, from);
    if (WholeCharacters(wanted, page).size() < wanted.size()) return npos;
    size_t boundary = from;
    for (size_t at = text.find(wanted, from); at != npos; at = text.find(wanted, at + 1)) {
        if (FollowsNoLead(text, at, page)) return at;
        while (boundary < at) boundary += CharacterSize(text, boundary, page);
        if (boundary == at) return at;
    }
    return npos;
}

std::string_view LeftWhole(std::string_view text, size_t bytes) {
    if (bytes >= text.size()) return text;
    const UINT page = CodePage();
    size_t at = 0;
    while (at < bytes) {
        // A lead byte takes two bytes here even if nothing follows it: half a character is never taken.
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
    if (a.size() != b.size()) return false;
    if (a == b) return true;
    const UINT page = CodePage();
    for (size_t at = 0; at < a.size();) {
        const size_t size = CharacterSize(a, at, page);
        if (size == 2 && CharacterSize(b, at, page) != 2) return false;
        if (FoldLetter(CharacterAt(a, at, size)) != FoldLetter(CharacterAt(b, at, size))) return false;
        at += size;
    }
    return true;
}

std::string FoldName(std::string_view name) {
    const UINT page = CodePage();
    std::string folded(name);
    for (size_t at = 0; at < folded.size();) {
        const size_t size = CharacterSize(folded, at, page);
        const unsigned character = FoldLetter(CharacterAt(folded, at, size));
        if (size == 2) folded[at] = static_cast<char>(character >> 8);
        folded[at + size - 1] = static_cast<char>(character & 0xFF);
        at += size;
    }
    return folded;
}

void CopyBounded(char* target, const char* source, size_t bytes) {
    const std::string_view taken = WholeCharacters({source, ::strnlen(source, bytes)}, CodePage());
    std::memmove(target, taken.data(), taken.size());  // both may be the same buffer
    std::fill(target + taken.size(), target + bytes, '\0');
}

}  // namespace qel
