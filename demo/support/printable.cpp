#include "demo/support/printable.h"

#include <algorithm>

namespace titration {
namespace {

constexpr bool IsFollower(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Bytes of the character at the start of @p text; 0 if there is none.
std::size_t CharacterSize(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) return 1;
    const std::size_t size = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (size > text.size()) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if (!IsFollower(text[i])) return 0;
    }
    return size;
}

bool IsControl(std::string_view character) {
    const auto last = static_cast<unsigned char>(character.back());
    return character.size() == 1 ? last < ' ' || last == 0x7F : character[0] == '\xC2' && last < 0xA0;
}

}  // namespace

std::string Printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        const bool isShown = size > 0 && !IsControl(text.substr(0, size));
        shown += isShown ? text.substr(0, size) : std::string_view("??").substr(0, std::max<std::size_t>(size, 1));
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return shown;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        if (size == 0) return false;
        text.remove_prefix(size);
    }
    return true;
}

}  // namespace titration
