#include "qellib10/quantity/phrase_table.h"

#include <vector>

namespace qel {
namespace {

constexpr std::string_view kPhraseHole = "{*}";

std::size_t LengthOfHole(std::string_view phrase, std::size_t hole) {
    return phrase.substr(hole).starts_with(kPhraseHole) ? kPhraseHole.size() : std::string_view("{}").size();
}

// What is in the holes, where the text is the phrase. A hole ends where the text after it comes first; the last one
// where the phrase's end begins.
std::optional<std::vector<std::string_view>> HolesIn(std::string_view phrase, std::string_view text) {
    std::size_t hole = phrase.find('{');
    std::vector<std::string_view> holes;
    if (hole == std::string_view::npos) return phrase == text ? std::optional(holes) : std::nullopt;
    if (!text.starts_with(phrase.substr(0, hole))) return {};
    text.remove_prefix(hole);
    for (;;) {
        phrase.remove_prefix(hole + LengthOfHole(phrase, hole));
        hole = phrase.find('{');
        const std::string_view fixed = phrase.substr(0, hole);
        if (hole == std::string_view::npos) {
            if (!text.ends_with(fixed)) return {};
            holes.push_back(text.substr(0, text.size() - fixed.size()));
            return holes;
        }
        const std::size_t end = text.find(fixed);
        if (end == std::string_view::npos) return {};
        holes.push_back(text.substr(0, end));
        text.remove_prefix(end + fixed.size());
    }
}

}  // namespace

std::optional<std::string> Translated(std::string_view english, std::span<const Phrase> phrases, Translator inner) {
    for (const Phrase& phrase : phrases) {
        const auto holes = HolesIn(phrase.english, english);
        if (!holes) continue;
        std::string text(phrase.japanese);
        std::size_t at = 0;
        for (const std::string_view hole : *holes) {
            at = text.find('{', at);
            const std::size_t length = LengthOfHole(text, at);
            const std::string filled = length == kPhraseHole.size() ? inner(hole) : std::string(hole);
            text.replace(at, length, filled);
            at += filled.size();
        }
        return text;
    }
    return {};
}

}  // namespace qel
