#include "qellib10/platform/drawing/cairo_shapes.h"

#include <cairo.h>

#include <cmath>

namespace qel {
namespace {

struct Vector {
    double x, y;
};

// From the middle of the box, whose last column and row are one before its edges.
Vector FromMiddle(const CRect& box, const POINT& point) noexcept {
    return {point.x - (double(box.left) + box.right - 1) / 2, point.y - (double(box.top) + box.bottom - 1) / 2};
}

// The angle on the circle that the ellipse is when both its radii are made the same.
double AngleOf(const Vector& ray, double radiusX, double radiusY) noexcept {
    return std::atan2(ray.y * radiusX, ray.x * radiusY);
}

}  // namespace

void SetSource(cairo_t* cairo, COLORREF color) {
    cairo_set_source_rgb(cairo, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
}

void ClipTo(cairo_t* cairo, const CRect& box) {
    cairo_rectangle(cairo, box.left, box.top, double(box.right) - box.left, double(box.bottom) - box.top);
    cairo_clip(cairo);
}

double PenCenter(int penWidth) noexcept { return penWidth % 2 != 0 ? 0.5 : 0.0; }

void UseRoundPen(cairo_t* cairo, const Ink& ink) {
    SetSource(cairo, ink.penColor);
    cairo_set_line_width(cairo, ink.penWidth);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    cairo_set_dash(cairo, nullptr, 0, 0);
}

void AddLine(cairo_t* cairo, const POINT& from, const POINT& to, int penWidth) {
    const double middle = PenCenter(penWidth);
    cairo_move_to(cairo, from.x + middle, from.y + middle);
    cairo_line_to(cairo, to.x + middle, to.y + middle);
}

void AddOutline(cairo_t* cairo, const CRect& box, const Ink& ink) {
    // A frame that must stay inside lies half its width further in.
    const bool isInside = ink.penStyle == PS_INSIDEFRAME;
    const double before = isInside ? ink.penWidth / 2.0 : PenCenter(ink.penWidth);
    const double behind = isInside ? ink.penWidth / 2.0 : 1 - PenCenter(ink.penWidth);
    const double width = double(box.right) - box.left - before - behind;
    const double height = double(box.bottom) - box.top - before - behind;
    cairo_rectangle(cairo, box.left + before, box.top + before, std::max(0.0, width), std::max(0.0, height));
}

void AddArc(cairo_t* cairo, const CRect& box, const POINT& start, const POINT& end, int penWidth) {
    const double radiusX = (double(box.right) - box.left - 1) / 2, radiusY = (double(box.bottom) - box.top - 1) / 2;
    if (radiusX <= 0 || radiusY <= 0) {
        AddLine(cairo, {box.left, box.top}, {box.right - 1, box.bottom - 1}, penWidth);
        return;
    }
    const double middle = PenCenter(penWidth);
    cairo_matrix_t matrix;
    cairo_get_matrix(cairo, &matrix);
    cairo_translate(cairo, box.left + radiusX + middle, box.top + radiusY + middle);
    cairo_scale(cairo, radiusX, radiusY);
    cairo_new_sub_path(cairo);
    if (IsWholeEllipse(box, start, end)) {
        cairo_arc(cairo, 0, 0, 1, 0, 2 * M_PI);
        cairo_close_path(cairo);
    } else {
        cairo_arc_negative(cairo, 0, 0, 1, AngleOf(FromMiddle(box, start), radiusX, radiusY),
                           AngleOf(FromMiddle(box, end), radiusX, radiusY));
    }
    cairo_set_matrix(cairo, &matrix);
}

bool IsWholeEllipse(const CRect& box, const POINT& start, const POINT& end) noexcept {
    const Vector a = FromMiddle(box, start), b = FromMiddle(box, end);
    return a.x * b.y == a.y * b.x && a.x * b.x + a.y * b.y >= 0;
}

}  // namespace qel
