#include "qellib10/platform/drawing/font_alias.h"

#include <algorithm>
#include <string_view>

namespace qel {
namespace {

struct Alias {
    const char* face;
    const char* families;
};

// Fontconfig itself knows metrically equal fonts for the Latin faces (Arial, Times New Roman, Courier New).
constexpr Alias kAliases[] = {
    {"MS Gothic", "MS Gothic,IPAGothic,monospace"},
    {"ＭＳ ゴシック", "MS Gothic,IPAGothic,monospace"},
    {"MS PGothic", "MS PGothic,IPAPGothic,sans-serif"},
    {"ＭＳ Ｐゴシック", "MS PGothic,IPAPGothic,sans-serif"},
    {"MS UI Gothic", "MS UI Gothic,IPAPGothic,sans-serif"},
    {"MS Mincho", "MS Mincho,IPAMincho,serif"},
    {"ＭＳ 明朝", "MS Mincho,IPAMincho,serif"},
    {"MS PMincho", "MS PMincho,IPAPMincho,serif"},
    {"ＭＳ Ｐ明朝", "MS PMincho,IPAPMincho,serif"},
    {"Tahoma", "Tahoma,Verdana,sans-serif"},
    {"MS Sans Serif", "Arial,sans-serif"},
    {"System", "sans-serif"},
};

// Names of faces ignore case.
bool IsSameFace(std::string_view a, std::string_view b) {
    const auto folded = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(a, b, {}, folded, folded);
}

}  // namespace

std::string FontFamilies(const std::string& face) {
    for (const Alias& alias : kAliases) {
        if (IsSameFace(face, alias.face)) return std::string(alias.families) + ",IPAGothic";
    }
    return (face.empty() ? "sans-serif" : face) + ",IPAGothic";
}

}  // namespace qel
