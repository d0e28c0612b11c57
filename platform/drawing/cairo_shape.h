#pragma once

#include <algorithm>
#include <cmath>
#include <span>

#include "qellib10/platform/drawing/shape.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

class TextFont;
struct TextLine;

// Shapes and labels as Cairo draws them, the same on every back end. The caller has set the clip.

/// @param longest corners of one path; longer lines are divided where that shows no seam
void PaintShape(cairo_t* cairo, std::span<const ShapePoint> corners, const ShapeStyle& style, std::size_t longest);

/// @param scale of the font
void PaintLabel(cairo_t* cairo, const TextFont& font, const TextLine& line, const ShapePoint& start, double scale,
                int quarterTurns, COLORREF color);

/// A coordinate that fits Cairo's fixed point numbers.
inline double NearCoordinate(double coordinate) noexcept {
    constexpr double kFarthest = 4'000'000;
    return std::clamp(coordinate, -kFarthest, kFarthest);
}

/// Whether both coordinates are numbers that can be drawn.
inline bool IsPlaced(const ShapePoint& point) noexcept { return !std::isnan(point.x) && !std::isnan(point.y); }

/// The dashes that are drawn; none if they cannot be.
std::span<const double> UsableDashes(const ShapeStyle& style) noexcept;

/// Limited to what a surface can draw.
double UsableWidth(double strokeWidth) noexcept;
double UsableOpacity(double opacity) noexcept;

}  // namespace qel
