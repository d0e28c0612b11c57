#include "qellib10/print/drawn_shape.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// "12.5": of hundredths without zeros at the end.
void Append(std::string& text, double length) {
    const int hundredths = Hundredths(length);
    const unsigned size = hundredths < 0 ? 0U - static_cast<unsigned>(hundredths) : static_cast<unsigned>(hundredths);
    if (hundredths < 0) text += '-';
    text += std::to_string(size / 100);
    if (const unsigned rest = size % 100; rest != 0) {
        text += '.';
        text += static_cast<char>('0' + rest / 10);
        if (rest % 10 != 0) text += static_cast<char>('0' + rest % 10);
    }
}

std::string Written(std::span<const ShapePoint> corners) {
    std::string text;
    for (const ShapePoint& corner : corners) {
        if (!text.empty()) text += ' ';
        if (std::isnan(corner.x) || std::isnan(corner.y)) {
            text += '-';
            continue;
        }
        Append(text, corner.x);
        text += ',';
        Append(text, corner.y);
    }
    return text;
}

// A place that cannot be read separates lines, like a dash.
ShapePoint CornerOf(std::string_view text) {
    ShapePoint corner;
    const char* const end = text.data() + text.size();
    const auto x = std::from_chars(text.data(), end, corner.x, std::chars_format::fixed);
    if (x.ec != std::errc() || x.ptr == end || *x.ptr != ',') return {kNoNumber, kNoNumber};
    const auto y = std::from_chars(x.ptr + 1, end, corner.y, std::chars_format::fixed);
    if (y.ec != std::errc() || y.ptr != end) return {kNoNumber, kNoNumber};
    return corner;
}

std::vector<ShapePoint> Read(std::string_view text) {
    std::vector<ShapePoint> corners;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find(' '), text.size());
        if (size > 0) corners.push_back(CornerOf(text.substr(0, size)));
        text.remove_prefix(std::min(size + 1, text.size()));
    }
    return corners;
}

}  // namespace

int Hundredths(double length) noexcept {
    if (std::isnan(length)) return 0;
    constexpr double kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::round(length * 100), -kMost, kMost));
}

DrawnShape DrawnShape::Of(std::span<const ShapePoint> corners, const ShapeStyle& style) {
    DrawnShape shape;
    shape.flags = (style.isClosed ? kClosed : 0) | (style.isRound ? kRound : 0) | (style.isSmooth ? 0 : kExact) |
                  (style.fill ? kFilled : 0) | (style.stroke ? kStroked : 0);
    shape.strokeColor = style.stroke.value_or(0);
    shape.fillColor = style.fill.value_or(0);
    shape.opacity = Hundredths(style.opacity);
    shape.strokeWidth = Hundredths(style.strokeWidth);
    if (style.dashes.size() <= shape.dashes.size())
        std::ranges::transform(style.dashes, shape.dashes.begin(), [](double length) { return Hundredths(length); });
    shape.corners = Written(corners);
    return shape;
}

void DrawnShape::Draw(CDC& dc, int offsetX, int offsetY) const {
    std::vector<ShapePoint> places = Read(corners);
    for (ShapePoint& place : places) place = {place.x + offsetX, place.y + offsetY};
    std::array<double, 4> lengths{};
    std::ranges::transform(dashes, lengths.begin(), [](int hundredths) { return hundredths / 100.0; });
    const bool hasTwo = dashes[2] != 0 || dashes[3] != 0;
    ShapeStyle style;
    if ((flags & kFilled) != 0) style.fill = fillColor;
    if ((flags & kStroked) != 0) style.stroke = strokeColor;
    style.strokeWidth = strokeWidth / 100.0;
    style.dashes = std::span(lengths).first(hasTwo ? 4 : 2);
    style.isClosed = (flags & kClosed) != 0;
    style.isRound = (flags & kRound) != 0;
    style.isSmooth = (flags & kExact) == 0;
    style.opacity = opacity / 100.0;
    DrawShape(dc, places, style);
}

void SetShapeOf(CQelPrintJobCommand& command, const CommandNumbers& numbers, const CString&, const CString& text) {
    const auto [color, width, flags, fill, opacity, dash1, gap1, dash2, gap2] = numbers;
    command.SetShape({flags,
                      static_cast<COLORREF>(color),
                      static_cast<COLORREF>(fill),
                      opacity,
                      width,
                      {dash1, gap1, dash2, gap2},
                      std::string(text.View())});
}

void SetLabelOf(CQelPrintJobCommand& command, const CommandNumbers& numbers, const CString& face, const CString& text) {
    const auto [size, x, y, color, flags, unused, unused2, unused3, unused4] = numbers;
    const LabelStyle style{ToUtf8(face.View()), size / 10.0, static_cast<COLORREF>(color), (flags & kLabelBold) != 0,
                           flags & kLabelTurns};
    command.SetLabel({x / 100.0, y / 100.0}, text.View(), style);
}

}  // namespace qel
