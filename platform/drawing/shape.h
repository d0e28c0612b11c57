#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"

class CDC;

namespace qel {

/// A place between pixels: 0,0 is the corner of the surface's first pixel, whose middle is at 0.5, 0.5.
struct ShapePoint {
    double x = 0;
    double y = 0;

    bool operator==(const ShapePoint&) const = default;
};

/// How a shape is drawn. Lengths are logical units of the context.
struct ShapeStyle {
    std::optional<COLORREF> fill = {};    ///< of the inside; the last corner is joined to the first one
    std::optional<COLORREF> stroke = {};  ///< of a line along the corners, with round joins
    double strokeWidth = 1;               ///< 1E-3 to 1E4, values outside are moved to the nearest
    std::span<const double> dashes = {};  ///< line, gap, line, ...; empty, more than 4, or without a length: no gaps
    bool isClosed = false;                ///< the line returns to the first corner
    bool isRound = false;                 ///< the line's ends are round, else they end at its corners
    bool isSmooth = true;                 ///< edges have shades; otherwise each pixel is drawn whole or not at all
    double opacity = 1;                   ///< 0 to 1
};

/// Draws the polygon or polyline of @p corners, limited by the context's clip. Pen, brush and position of the context
/// are neither used nor changed. Corners that are not numbers start a new line.
/// @return false for a context without a handle
QELLIB10_API bool DrawShape(CDC& dc, std::span<const ShapePoint> corners, const ShapeStyle& style);

/// A font and direction of texts in UTF-8, which need no code page.
struct LabelStyle {
    std::string face = {};  ///< in UTF-8; empty: the sans-serif font of the system
    double points = 10;     ///< 1/72 inch, the em height: 0.5 to 1000
    COLORREF color = 0;
    bool isBold = false;
    int quarterTurns = 0;  ///< counter-clockwise, 0 to 3: a title beside an axis is turned once

    bool operator==(const LabelStyle&) const = default;
};

/// Of a line of text that is not turned, in device units. The same on all surfaces of one resolution.
struct LabelSize {
    double width = 0;    ///< advance
    double ascent = 0;   ///< above the baseline, of the font
    double descent = 0;  ///< below it

    double Height() const noexcept { return ascent + descent; }
};

QELLIB10_API LabelSize MeasureLabel(std::string_view utf8, const LabelStyle& style, double dotsPerInch);

/// The longest start of a text with "..." (U+2026) that is at most @p width device units wide, or the text itself if it
/// is. Empty if not even the ellipsis fits.
QELLIB10_API std::string ShortenedLabel(std::string_view utf8, const LabelStyle& style, double dotsPerInch,
                                        double width);

/// Draws one line of text whose baseline starts at @p start, limited by the context's clip, without a background.
/// @param dotsPerInch of the logical units: font sizes are measured with it
/// @return false for a context without a handle
QELLIB10_API bool DrawLabel(CDC& dc, const ShapePoint& start, std::string_view utf8, const LabelStyle& style,
                            double dotsPerInch);

}  // namespace qel
