#include "printable.h"

namespace titration {
namespace {

constexpr bool IsFollower(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Bytes of the character that @p text begins with; 0 when none does, or one that controls.
std::size_t CharacterSize(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) return first >= ' ' && first != 0x7F ? 1 : 0;
    const std::size_t size = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (size > text.size()) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if (!IsFollower(text[i])) return 0;
    }
    const bool isControl = first == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
    return isControl ? 0 : size;
}

}  // namespace

std::string Printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t size = CharacterSize(text);
        shown += size > 0 ? text.substr(0, size) : "?";
        text.remove_prefix(size > 0 ? size : 1);
    }
    return shown;
}

}  // namespace titration
