#include "qellib10/platform/drawing/vector_surface.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <span>

#include "qellib10/platform/drawing/cairo_shape.h"
#include "qellib10/platform/drawing/cairo_shapes.h"
#include "qellib10/platform/drawing/dash_pattern.h"
#include "qellib10/platform/drawing/hatch.h"
#include "qellib10/platform/drawing/pixel_buffer.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/platform/drawing/text_font.h"

namespace qel {
namespace {

// Some printers do not accept longer paths.
constexpr std::size_t kLongestPath = 10000;
// The middle of a device unit: lines of any width are centred there.
constexpr double kMiddle = 0.5;
// The longest join of two thin lines: half of Cairo's limit.
constexpr int kLongestMiter = 5;

struct Destroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

// A separate copy: the back end may keep it until the page ends.
std::unique_ptr<cairo_surface_t, Destroy> PictureOf(const PixelBuffer& pixels, const CRect& source) {
    std::unique_ptr<cairo_surface_t, Destroy> picture(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, source.Width(), source.Height()));
    unsigned char* const bytes = cairo_image_surface_get_data(picture.get());
    const int stride = cairo_image_surface_get_stride(picture.get());
    for (int y = 0; bytes != nullptr && y < source.Height(); ++y) {
        std::memcpy(bytes + std::ptrdiff_t{y} * stride, pixels.Row(source.top + y) + source.left,
                    static_cast<std::size_t>(source.Width()) * sizeof(std::uint32_t));
    }
    cairo_surface_mark_dirty(picture.get());
    return picture;
}

}  // namespace

template <class Step> void VectorSurface::Draw(const Step& step, bool isClipped) {
    cairo_t* const cairo = Cairo();
    if (cairo == nullptr) return;
    cairo_save(cairo);
    if (m_ink.clip && isClipped) ClipTo(cairo, *m_ink.clip);
    step(cairo);
    cairo_restore(cairo);
    cairo_new_path(cairo);
}

double VectorSurface::PixelLength() const { return ScreenPixelLength(DeviceCaps(LOGPIXELSX)); }

void VectorSurface::SetInk(const Ink& ink) {
    Flush();
    m_ink = ink;
}

void VectorSurface::MoveTo(const POINT& to) {
    if (m_isLineOpen) m_reducer.End(m_aryLine.back().points);
    m_isLineOpen = false;
    m_at = to;
}

void VectorSurface::LineTo(const POINT& to) {
    if (m_ink.penStyle == PS_NULL) {
        m_at = to;
        return;
    }
    const bool isReduced = m_ink.IsThinSolid();
    const auto add = [&](const CPoint& point) {
        std::vector<CPoint>& points = m_aryLine.back().points;
        if (isReduced) {
            m_reducer.Add(point, points);
        } else {
            points.push_back(point);
        }
    };
    if (!m_isLineOpen) {
        m_aryLine.emplace_back();
        m_isLineOpen = true;
        add(m_at);
    }
    const std::size_t before = m_aryLine.back().points.size();
    add(to);
    m_at = to;
    m_nPoints += m_aryLine.back().points.size() - before;
    // A dashed line is kept in one piece: its pattern must not start again.
    if (m_nPoints >= kLongestPath && !m_ink.IsDashed()) Flush();
}

void VectorSurface::Flush() {
    if (m_isLineOpen) m_reducer.End(m_aryLine.back().points);
    m_isLineOpen = false;
    m_nPoints = 0;
    if (m_aryLine.empty()) return;
    // PDF readers move thin lines to whole device dots: a line along the edge of a clip would get lost.
    const bool isClipped = !IsInsideClip();
    Draw(
        [this](cairo_t* cairo) {
            for (const Line& line : m_aryLine) {
                cairo_new_sub_path(cairo);
                for (const CPoint& point : line.points) {
                    cairo_line_to(cairo, Near(point.x) + kMiddle, Near(point.y) + kMiddle);
                }
            }
            StrokePath(cairo);
        },
        isClipped);
    m_aryLine.clear();
}

// Whether the clip cuts nothing off the collected lines.
bool VectorSurface::IsInsideClip() const {
    if (!m_ink.clip) return true;
    bool isUpright = true;  // or horizontal: joins do not reach past the lines themselves
    CRect box(m_aryLine.front().points.front(), CSize(0, 0));
    for (const Line& line : m_aryLine) {
        CPoint before = line.points.front();
        for (const CPoint& point : line.points) {
            box = CRect(std::min(box.left, point.x), std::min(box.top, point.y), std::max(box.right, point.x),
                        std::max(box.bottom, point.y));
            isUpright = isUpright && (point.x == before.x || point.y == before.y);
            before = point;
        }
    }
    const std::int64_t reach = m_ink.penWidth == 1 && !isUpright ? kLongestMiter : m_ink.penWidth / 2;
    const CRect& clip = *m_ink.clip;
    return box.left - reach >= clip.left && box.top - reach >= clip.top && box.right + reach < clip.right &&
           box.bottom + reach < clip.bottom;
}

// Strokes the path with the pen: thin ones end at their points, wide ones are round.
void VectorSurface::StrokePath(cairo_t* cairo) {
    UseRoundPen(cairo, m_ink);
    if (m_ink.penWidth == 1) {
        cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
        cairo_set_line_join(cairo, CAIRO_LINE_JOIN_MITER);
    }
    if (m_ink.IsDashed()) {
        if (m_ink.isOpaque) {
            SetSource(cairo, m_ink.backColor);
            cairo_stroke_preserve(cairo);
            SetSource(cairo, m_ink.penColor);
        }
        const std::span<const int> lengths = DashLengths(m_ink.penStyle);
        std::array<double, 6> dashes{};
        std::ranges::transform(lengths, dashes.begin(), [this](int length) { return length * PixelLength(); });
        cairo_set_dash(cairo, dashes.data(), static_cast<int>(lengths.size()), 0);
    }
    cairo_stroke(cairo);
}

void VectorSurface::Rectangle(const CRect& box) {
    Flush();
    if (m_ink.penStyle == PS_NULL) {
        FillRect({box.left, box.top, box.right - 1, box.bottom - 1}, m_ink.brush);
        return;
    }
    FillRect(box, m_ink.brush);
    Draw([&](cairo_t* cairo) {
        const double inset = m_ink.penStyle == PS_INSIDEFRAME ? m_ink.penWidth / 2.0 : kMiddle;
        const double left = Near(box.left) + inset, top = Near(box.top) + inset;
        cairo_rectangle(cairo, left, top, std::max(0.0, Near(box.right) - inset - left),
                        std::max(0.0, Near(box.bottom) - inset - top));
        StrokePath(cairo);
    });
}

void VectorSurface::Arc(const CRect& box, const POINT& start, const POINT& end) {
    Flush();
    if (m_ink.penStyle == PS_NULL) return;
    Draw([&](cairo_t* cairo) {
        AddArc(cairo, box, start, end, 1);
        StrokePath(cairo);
    });
}

void VectorSurface::FillRect(const CRect& box, const LOGBRUSH& brush) {
    Flush();
    if (brush.lbStyle == BS_NULL || box.IsRectEmpty()) return;
    Draw([&](cairo_t* cairo) {
        const auto fill = [&](COLORREF color) {
            SetSource(cairo, color);
            AddBox(cairo, box);
            cairo_fill(cairo);
        };
        if (brush.lbStyle != BS_HATCHED) {
            fill(brush.lbColor);
            return;
        }
        if (m_ink.isOpaque) fill(m_ink.backColor);
        const int width = DeviceCaps(HORZRES), height = DeviceCaps(VERTRES);
        CRect visible;
        if (!visible.IntersectRect(box, CRect(-width, -height, 2 * width, 2 * height))) return;
        ClipTo(cairo, visible);
        SetSource(cairo, brush.lbColor);
        Hatch(cairo, visible, brush.lbHatch);
    });
}

// Lines one cell apart, starting at the device's corner.
void VectorSurface::Hatch(cairo_t* cairo, const CRect& box, int hatch) {
    const double cell = kHatchCell * PixelLength();
    const double left = box.left, top = box.top, right = box.right, bottom = box.bottom;
    // Lines on which a coordinate (or sum, or difference) is a whole number of cells plus @p shift pixels, from low to
    // high.
    const auto lines = [&](double low, double high, double shift, const auto& line) {
        const double first = std::floor(low / cell) * cell + (shift + kMiddle) * PixelLength();
        for (double at = first; at <= high + cell; at += cell) line(at);
    };
    const bool isCross = hatch < HS_HORIZONTAL || hatch > HS_DIAGCROSS || hatch == HS_CROSS;
    if (hatch == HS_HORIZONTAL || isCross) {
        lines(top, bottom, 3, [&](double y) {
            cairo_move_to(cairo, left, y);
            cairo_line_to(cairo, right, y);
        });
    }
    if (hatch == HS_VERTICAL || isCross) {
        lines(left, right, 4, [&](double x) {
            cairo_move_to(cairo, x, top);
            cairo_line_to(cairo, x, bottom);
        });
    }
    if (hatch == HS_FDIAGONAL || hatch == HS_DIAGCROSS) {
        lines(left - bottom, right - top, -kMiddle, [&](double difference) {
            cairo_move_to(cairo, difference + top, top);
            cairo_line_to(cairo, difference + bottom, bottom);
        });
    }
    if (hatch == HS_BDIAGONAL || hatch == HS_DIAGCROSS) {
        lines(left + top, right + bottom, 7 + kMiddle, [&](double sum) {
            cairo_move_to(cairo, sum - top, top);
            cairo_line_to(cairo, sum - bottom, bottom);
        });
    }
    cairo_set_line_width(cairo, PixelLength());
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cairo);
}

void VectorSurface::InvertRect(const CRect& box) {
    Flush();
    Draw([&](cairo_t* cairo) {
        cairo_set_operator(cairo, CAIRO_OPERATOR_DIFFERENCE);
        SetSource(cairo, RGB(255, 255, 255));
        AddBox(cairo, box);
        cairo_fill(cairo);
    });
}

void VectorSurface::Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
                         const CRect* box) {
    Flush();
    Draw([&](cairo_t* cairo) {
        if (box != nullptr) ClipTo(cairo, *box);
        SetSource(cairo, color);
        font.Show(cairo, line, baseline.x, baseline.y);
    });
}

void VectorSurface::Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) {
    Flush();
    Draw([&](cairo_t* cairo) { PaintShape(cairo, corners, style, kLongestPath); });
}

void VectorSurface::Label(const TextFont& font, const TextLine& line, const ShapePoint& start, double scale,
                          int quarterTurns, COLORREF color) {
    Flush();
    Draw([&](cairo_t* cairo) { PaintLabel(cairo, font, line, start, scale, quarterTurns, color); });
}

void VectorSurface::CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) {
    Flush();
    Draw([&](cairo_t* cairo) {
        const auto picture = PictureOf(pixels, source);
        cairo_set_source_surface(cairo, picture.get(), to.x, to.y);
        cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_NEAREST);
        cairo_rectangle(cairo, to.x, to.y, source.Width(), source.Height());
        cairo_fill(cairo);
    });
}

}  // namespace qel
