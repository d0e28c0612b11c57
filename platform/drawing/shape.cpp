#include "qellib10/platform/drawing/shape.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/device_context.h"
#include "qellib10/platform/drawing/label_text.h"
#include "qellib10/platform/drawing/text_font.h"

namespace qel {
namespace {

constexpr std::string_view kEllipsis = "\u2026";

// The size of a character of UTF-8; 1 for a byte that starts none.
std::size_t CharacterSize(std::string_view text) {
    std::size_t size = 1;
    while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) ++size;
    return size;
}

}  // namespace

bool DrawShape(CDC& dc, std::span<const ShapePoint> corners, const ShapeStyle& style) {
    const auto context = FindDeviceContext(dc.m_hDC);
    if (!context) return false;
    context->Shape(corners, style);
    return true;
}

bool DrawLabel(CDC& dc, const ShapePoint& start, std::string_view utf8, const LabelStyle& style, double dotsPerInch) {
    const auto context = FindDeviceContext(dc.m_hDC);
    if (!context) return false;
    context->Label(start, LabelText(utf8, style, dotsPerInch), style.quarterTurns, style.color);
    return true;
}

LabelSize MeasureLabel(std::string_view utf8, const LabelStyle& style, double dotsPerInch) {
    const LabelText text(utf8, style, dotsPerInch);
    const double scale = text.scale;
    return {text.line.width * scale, text.font->Ascent() * scale, text.font->Descent() * scale};
}

std::string ShortenedLabel(std::string_view utf8, const LabelStyle& style, double dotsPerInch, double width) {
    const auto fits = [&](std::string_view text) { return MeasureLabel(text, style, dotsPerInch).width <= width; };
    if (fits(utf8)) return std::string(utf8);
    std::vector<std::size_t> ends = {0};  // of the characters
    while (ends.back() < utf8.size()) ends.push_back(ends.back() + CharacterSize(utf8.substr(ends.back())));
    const auto shortened = [&](std::size_t characters) {
        const std::string_view start = utf8.substr(0, ends[characters]);
        return std::string(start.substr(0, start.find_last_not_of(' ') + 1)).append(kEllipsis);
    };
    std::size_t low = 0, high = ends.size() - 1;  // the first fits if any does, the last does not
    if (!fits(shortened(0))) return {};
    while (high - low > 1) {
        const std::size_t middle = low + (high - low) / 2;
        (fits(shortened(middle)) ? low : high) = middle;
    }
    return shortened(low);
}

}  // namespace qel
