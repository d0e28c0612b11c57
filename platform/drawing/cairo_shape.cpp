#include "qellib10/platform/drawing/cairo_shape.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

#include "qellib10/platform/drawing/text_font.h"

namespace qel {
namespace {

constexpr double kThinnest = 1e-3, kWidest = 1e4;
constexpr std::size_t kMostDashes = 4;

void SetColor(cairo_t* cairo, COLORREF color, double opacity) {
    cairo_set_source_rgba(cairo, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0,
                          UsableOpacity(opacity));
}

void AddPath(cairo_t* cairo, std::span<const ShapePoint> corners, bool isClosed) {
    bool isDown = false;
    for (const ShapePoint& corner : corners) {
        if (!IsPlaced(corner)) {
            isDown = false;
            continue;
        }
        if (!isDown) cairo_new_sub_path(cairo);
        isDown = true;
        cairo_line_to(cairo, NearCoordinate(corner.x), NearCoordinate(corner.y));
    }
    if (isClosed && isDown) cairo_close_path(cairo);
}

void UseStroke(cairo_t* cairo, const ShapeStyle& style) {
    SetColor(cairo, *style.stroke, style.opacity);
    cairo_set_line_width(cairo, UsableWidth(style.strokeWidth));
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cairo, style.isRound ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
    const std::span<const double> dashes = UsableDashes(style);
    cairo_set_dash(cairo, dashes.data(), static_cast<int>(dashes.size()), 0);
}

}  // namespace

std::span<const double> UsableDashes(const ShapeStyle& style) noexcept {
    const std::span<const double> dashes = style.dashes;
    const auto isLength = [](double length) { return length >= 0 && length <= kWidest; };
    const bool isUsable = dashes.size() <= kMostDashes && std::ranges::all_of(dashes, isLength) &&
                          std::ranges::any_of(dashes, [](double length) { return length >= kThinnest; });
    return isUsable ? dashes : std::span<const double>();
}

double UsableWidth(double strokeWidth) noexcept {
    return strokeWidth >= kThinnest ? std::min(strokeWidth, kWidest) : kThinnest;
}

double UsableOpacity(double opacity) noexcept { return opacity >= 0 ? std::min(opacity, 1.0) : 0; }

void PaintShape(cairo_t* cairo, std::span<const ShapePoint> corners, const ShapeStyle& style, std::size_t longest) {
    cairo_set_antialias(cairo, style.isSmooth ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
    if (style.fill) {
        SetColor(cairo, *style.fill, style.opacity);
        AddPath(cairo, corners, true);
        cairo_fill(cairo);
    }
    if (!style.stroke) return;
    UseStroke(cairo, style);
    // Pieces of a closed, dashed or transparent line would show where they meet.
    const bool isDivided = !style.isClosed && UsableDashes(style).empty() && UsableOpacity(style.opacity) == 1;
    while (isDivided && corners.size() > longest) {
        AddPath(cairo, corners.first(longest), false);
        cairo_stroke(cairo);
        corners = corners.subspan(longest - 1);
    }
    AddPath(cairo, corners, style.isClosed);
    cairo_stroke(cairo);
}

void PaintLabel(cairo_t* cairo, const TextFont& font, const TextLine& line, const ShapePoint& start, double scale,
                int quarterTurns, COLORREF color) {
    SetColor(cairo, color, 1);
    cairo_translate(cairo, NearCoordinate(start.x), NearCoordinate(start.y));
    cairo_rotate(cairo, -M_PI_2 * quarterTurns);
    cairo_scale(cairo, scale, scale);
    font.Show(cairo, line, 0, 0);
}

}  // namespace qel
