#include <vector>

#include "qellib10/platform/storage/find_files.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

// Elements of a pattern. The platform changes the meaning of wildcards depending on their neighbours.
enum class Kind {
    Character,  // itself
    Any,        // any text
    BeforeDot,  // any text that does not reach past the name's last dot
    One,        // one character except a dot; before a dot or at the end none
    Dot,        // a dot, or none at the end
};

struct Place {
    Kind kind;
    unsigned character = 0;  // lead * 256 + trail for a double-byte one
};

unsigned Folded(unsigned character) { return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character; }

std::vector<unsigned> Characters(std::string_view text) {
    std::vector<unsigned> characters;
    const UINT page = CodePage();
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = CharacterSize(text, at, page);
        unsigned character = static_cast<unsigned char>(text[at]);
        if (size == 2) character = character * 256 + static_cast<unsigned char>(text[at + 1]);
        characters.push_back(Folded(character));
        at += size;
    }
    return characters;
}

std::vector<Place> Rewritten(std::string_view pattern) {
    if (pattern == "*.*") pattern = "*";
    const std::vector<unsigned> written = Characters(pattern);
    const auto at = [&](std::size_t i) { return i < written.size() ? written[i] : 0; };
    std::vector<Place> places;
    for (std::size_t i = 0; i < written.size(); ++i) {
        const bool lastDot = at(i) == '.' && i + 1 == written.size() && i > 0 && written[i - 1] == '*';
        if (lastDot) continue;  // a final "*." matches names without a dot
        if (at(i) == '*') {
            places.push_back({at(i + 1) == '.' ? Kind::BeforeDot : Kind::Any});
        } else if (at(i) == '?') {
            places.push_back({Kind::One});
        } else if (at(i) == '.' && (at(i + 1) == '*' || at(i + 1) == '?')) {
            places.push_back({Kind::Dot});
        } else {
            places.push_back({Kind::Character, at(i)});
        }
    }
    return places;
}

// The positions in the pattern that the start of a name can lead to, all at once, so that no pattern takes longer than
// its length times the length of the name.
class Matcher {
public:
    explicit Matcher(std::vector<Place> places) : m_places(std::move(places)), m_reached(m_places.size() + 1) {
        m_reached[0] = true;
    }

    // Skips elements that may match nothing before @p next, 0 at the end of the name.
    void SkipEmpty(unsigned next) {
        for (std::size_t i = 0; i < m_places.size(); ++i) {
            const Kind kind = m_places[i].kind;
            const bool empty = kind == Kind::Any || kind == Kind::BeforeDot ||
                               (kind == Kind::One && (next == 0 || next == '.')) || (kind == Kind::Dot && next == 0);
            if (m_reached[i] && empty) m_reached[i + 1] = true;
        }
    }

    void Take(unsigned character, bool lastDot) {
        std::vector<bool> after(m_reached.size());
        for (std::size_t i = 0; i < m_places.size(); ++i) {
            if (!m_reached[i]) continue;
            const Place& place = m_places[i];
            if (place.kind == Kind::Any || (place.kind == Kind::BeforeDot && !lastDot)) after[i] = true;
            const bool taken = (place.kind == Kind::Character && place.character == character) ||
                               (place.kind == Kind::One && character != '.') ||
                               (place.kind == Kind::Dot && character == '.');
            if (taken) after[i + 1] = true;
        }
        m_reached = std::move(after);
    }

    bool AtEnd() const { return m_reached.back(); }

private:
    std::vector<Place> m_places;
    std::vector<bool> m_reached;
};

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
    const std::vector<unsigned> characters = Characters(name);
    std::size_t lastDot = characters.size();
    for (std::size_t i = 0; i < characters.size(); ++i) {
        if (characters[i] == '.') lastDot = i;
    }
    Matcher matcher(Rewritten(pattern));
    for (std::size_t i = 0; i < characters.size(); ++i) {
        matcher.SkipEmpty(characters[i]);
        matcher.Take(characters[i], i == lastDot);
    }
    matcher.SkipEmpty(0);
    return matcher.AtEnd();
}

}  // namespace qel
