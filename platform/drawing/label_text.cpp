#include "qellib10/platform/drawing/label_text.h"

#include <glib.h>

#include <algorithm>
#include <string>

#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr int kEm = 256;                            // of the font that is measured
constexpr double kSmallest = 0.5, kLargest = 1000;  // points
constexpr double kPointsPerInch = 72;

LOGFONT DescriptionOf(const LabelStyle& style) {
    LOGFONT description = {};
    description.lfWeight = style.isBold ? FW_BOLD : FW_NORMAL;
    CopyBounded(description.lfFaceName, FromUtf8(style.face).c_str(), LF_FACESIZE - 1);
    return description;
}

// Bytes that are no characters become U+FFFD.
std::string ValidUtf8(std::string_view text) {
    const std::unique_ptr<gchar, decltype(&g_free)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), &g_free);
    return valid.get();
}

}  // namespace

LabelText::LabelText(std::string_view utf8, const LabelStyle& style, double dotsPerInch)
    : font(TextFont::Kept(DescriptionOf(style), -kEm)), line(font->Line(ValidUtf8(utf8))) {
    const double points = style.points >= kSmallest ? std::min(style.points, kLargest) : kSmallest;
    scale = points / kPointsPerInch * dotsPerInch / kEm;
}

}  // namespace qel
