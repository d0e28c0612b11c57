#pragma once

#include "qellib10/platform/drawing/ink.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

// Shapes as Cairo draws them, the same on every back end. The caller has set antialiasing and clip.

/// A coordinate that fits Cairo's fixed point numbers together with a pen: those farther out are moved nearer.
double Near(LONG coordinate) noexcept;
/// The path of a box.
void AddBox(cairo_t* cairo, const CRect& box);

void SetSource(cairo_t* cairo, COLORREF color);
void ClipTo(cairo_t* cairo, const CRect& box);

/// The distance of the pen's middle from the pixel's corner: odd widths are centred on the pixel's middle, even ones on
/// its corner, so that the extra row is above and the extra column at the left.
double PenCenter(int penWidth) noexcept;

/// Round ends and joins, the ink's pen without dashes.
void UseRoundPen(cairo_t* cairo, const Ink& ink);

/// The path of a line, of the outline of a box, and of an arc, through the pen's middle.
void AddLine(cairo_t* cairo, const POINT& from, const POINT& to, int penWidth);
void AddOutline(cairo_t* cairo, const CRect& box, const Ink& ink);
void AddArc(cairo_t* cairo, const CRect& box, const POINT& start, const POINT& end, int penWidth);

/// The angle of the ray from the box's middle through a point, clockwise from the right, in radians. Measured on the
/// circle that the inscribed ellipse becomes when both its radii are made equal.
double EllipseAngle(const CRect& box, const POINT& point) noexcept;

/// Whether the rays from the box's middle through both points are the same: the arc is the whole ellipse.
bool IsWholeEllipse(const CRect& box, const POINT& start, const POINT& end) noexcept;

}  // namespace qel
