#include "qellib10/platform/drawing/cairo_shapes.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

namespace qel {
namespace {

constexpr LONG kFarthest = 4'000'000;

struct Vector {
    double x, y;
};

// From the middle of the box; its last column and row are one before its edges.
Vector FromMiddle(const CRect& box, const POINT& point) noexcept {
    return {point.x - (double(box.left) + box.right - 1) / 2, point.y - (double(box.top) + box.bottom - 1) / 2};
}

}  // namespace

double Near(LONG coordinate) noexcept { return std::clamp<LONG>(coordinate, -kFarthest, kFarthest); }

void AddBox(cairo_t* cairo, const CRect& box) {
    const double left = Near(box.left), top = Near(box.top);
    cairo_rectangle(cairo, left, top, Near(box.right) - left, Near(box.bottom) - top);
}

void SetSource(cairo_t* cairo, COLORREF color) {
    cairo_set_source_rgb(cairo, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
}

void ClipTo(cairo_t* cairo, const CRect& box) {
    AddBox(cairo, box);
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
    cairo_move_to(cairo, Near(from.x) + middle, Near(from.y) + middle);
    cairo_line_to(cairo, Near(to.x) + middle, Near(to.y) + middle);
}

void AddOutline(cairo_t* cairo, const CRect& box, const Ink& ink) {
    // A frame that must stay inside is half its width further in.
    const bool isInside = ink.penStyle == PS_INSIDEFRAME;
    const double before = isInside ? ink.penWidth / 2.0 : PenCenter(ink.penWidth);
    const double after = isInside ? ink.penWidth / 2.0 : 1 - PenCenter(ink.penWidth);
    const double left = Near(box.left) + before, top = Near(box.top) + before;
    cairo_rectangle(cairo, left, top, std::max(0.0, Near(box.right) - after - left),
                    std::max(0.0, Near(box.bottom) - after - top));
}

double EllipseAngle(const CRect& box, const POINT& point) noexcept {
    const Vector ray = FromMiddle(box, point);
    return std::atan2(ray.y * (double(box.right) - box.left - 1), ray.x * (double(box.bottom) - box.top - 1));
}

void AddArc(cairo_t* cairo, const CRect& box, const POINT& start, const POINT& end, int penWidth) {
    const double left = Near(box.left), top = Near(box.top);
    const double radiusX = (Near(box.right) - left - 1) / 2, radiusY = (Near(box.bottom) - top - 1) / 2;
    if (radiusX <= 0 || radiusY <= 0) {
        AddLine(cairo, {box.left, box.top}, {box.right - 1, box.bottom - 1}, penWidth);
        return;
    }
    const double middle = PenCenter(penWidth);
    cairo_matrix_t matrix;
    cairo_get_matrix(cairo, &matrix);
    cairo_translate(cairo, left + radiusX + middle, top + radiusY + middle);
    cairo_scale(cairo, radiusX, radiusY);
    cairo_new_sub_path(cairo);
    if (IsWholeEllipse(box, start, end)) {
        cairo_arc(cairo, 0, 0, 1, 0, 2 * M_PI);
        cairo_close_path(cairo);
    } else {
        cairo_arc_negative(cairo, 0, 0, 1, EllipseAngle(box, start), EllipseAngle(box, end));
    }
    cairo_set_matrix(cairo, &matrix);
}

bool IsWholeEllipse(const CRect& box, const POINT& start, const POINT& end) noexcept {
    const Vector a = FromMiddle(box, start), b = FromMiddle(box, end);
    return a.x * b.y == a.y * b.x && a.x * b.x + a.y * b.y >= 0;
}

}  // namespace qel
