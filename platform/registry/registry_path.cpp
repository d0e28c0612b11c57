#include "qellib10/platform/registry/registry_path.h"

#include <algorithm>

#include "qellib10/platform/registry/registry_error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;

// Capital letters and the distance to their small ones. Both have the same size in UTF-8.
struct Capitals {
    char32_t first, last, distance;
};
constexpr Capitals kCapitals[] = {{U'A', U'Z', 0x20},    {0xC0, 0xD6, 0x20},   {0xD8, 0xDE, 0x20},
                                  {0x391, 0x3A9, 0x20},  {0x401, 0x401, 0x50}, {0x410, 0x42F, 0x20},
                                  {0xFF21, 0xFF3A, 0x20}};

constexpr char32_t Folded(char32_t character) {
    for (const auto& [first, last, distance] : kCapitals) {
        if (character < first) break;
        if (character <= last) return character + distance;
    }
    return character;
}

std::string FoldUtf8(std::string_view utf8) {
    std::string folded(utf8);
    for (std::size_t at = 0; at < utf8.size();) {
        char* place = folded.data() + at;
        const char32_t character = NextCharacter(utf8, at);
        if (const char32_t fold = Folded(character); fold != character) WriteCharacter(place, fold);
    }
    return folded;
}

// Characters of valid UTF-8.
std::size_t Length(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(utf8, [](char c) { return (c & 0xC0) != 0x80; }));
}

RegistryName Converted(std::string_view text) {
    std::string name = ToUtf8(text);
    std::string fold = FoldUtf8(name);
    return {std::move(name), std::move(fold)};
}

}  // namespace

RegistryName RegistryName::OfValue(std::string_view text) {
    RegistryName name = Converted(text);
    if (Length(name.name) > kLongestValueName) throw RegistryError(kRegistryInvalidParameter);
    return name;
}

RegistryPath::RegistryPath(std::string_view path) : m_text(Converted(path)) {
    const std::string_view text = m_text.name;
    if (text.starts_with('\\')) throw RegistryError(kRegistryBadPath);
    m_names.reserve(8);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\\', at), text.size());
        if (end > at) m_names.push_back({at, end - at});
        if (m_names.size() > kMaxNames || Length(text.substr(at, end - at)) > kLongestKeyName) {
            throw RegistryError(kRegistryInvalidParameter);
        }
        at = end + 1;
    }
}

}  // namespace qel
