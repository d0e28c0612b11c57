#include "qellib10/platform/drawing/bitmap_surface.h"

#include <cairo.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "qellib10/platform/drawing/cairo_canvas.h"
#include "qellib10/platform/drawing/cairo_shape.h"
#include "qellib10/platform/drawing/cairo_shapes.h"
#include "qellib10/platform/drawing/hatch.h"
#include "qellib10/platform/drawing/screen.h"
#include "qellib10/platform/drawing/smooth_curve.h"
#include "qellib10/platform/drawing/text_font.h"

namespace qel {
namespace {

// Kept for callers that read all bytes of a pixel: where Cairo draws, it also fills the highest byte.
constexpr std::uint32_t kCairosUnusedByte = 0xFF000000;

constexpr std::uint32_t PixelOf(COLORREF color) noexcept {
    return std::uint32_t{GetRValue(color)} << 16 | std::uint32_t{GetGValue(color)} << 8 | GetBValue(color);
}

}  // namespace

BitmapSurface::BitmapSurface(const SIZE& dotsPerInch)
    : m_dotsPerInch(dotsPerInch), m_pPixels(PixelBuffer::Create(1, 1)), m_writer(m_raster, 0) {
    Rebuild();
}

BitmapSurface::~BitmapSurface() { m_pPixels->RemoveSurface(*this); }

int BitmapSurface::DeviceCaps(int index) const {
    return PictureCaps(index, {m_pPixels->Width(), m_pPixels->Height()}, m_dotsPerInch, 32);
}

bool BitmapSurface::SelectPixels(std::shared_ptr<PixelBuffer> pixels) {
    Flush();
    m_pPixels->RemoveSurface(*this);
    m_pPixels = std::move(pixels);
    m_pPixels->AddSurface(*this);
    m_pCanvas.reset();
    Rebuild();
    return true;
}

void BitmapSurface::SetInk(const Ink& ink) {
    Flush();
    m_ink = ink;
    Rebuild();
}

// The clip and the pen decide how a line is drawn.
void BitmapSurface::Rebuild() {
    const CRect clip = ClipBox();
    m_raster = {m_pPixels->Row(0), m_pPixels->Width(), clip.left, clip.top, clip.right, clip.bottom};
    m_line = m_ink.penStyle == PS_NULL ? Line::kNone
             : m_ink.IsDashed()        ? Line::kDashed
             : m_ink.IsThinSolid()     ? Line::kThin
                                       : Line::kWide;
    m_writer = PolylineWriter(m_raster, PixelOf(m_ink.penColor));
    m_writer.MoveTo(m_at);
    m_wide.MoveTo(m_at);
    m_isWideReady = false;
    if (m_line != Line::kDashed) return;
    m_dashed = DashedPolyline(m_raster, m_ink, PixelOf(m_ink.penColor), PixelOf(m_ink.backColor));
    m_dashed.MoveTo(m_at);
}

CRect BitmapSurface::ClipBox() const {
    CRect clip(0, 0, m_pPixels->Width(), m_pPixels->Height());
    if (m_ink.clip) clip.IntersectRect(clip, *m_ink.clip);
    return clip;
}

CairoCanvas& BitmapSurface::Canvas() {
    if (!m_pCanvas) m_pCanvas = std::make_unique<CairoCanvas>(m_pPixels);
    return *m_pCanvas;
}

void BitmapSurface::Flush() {
    m_writer.Flush();
    m_wide.Flush([this](const POINT& from, const POINT& to) { WideLine(from, to); });
}

void BitmapSurface::MoveTo(const POINT& to) {
    Flush();
    m_writer.MoveTo(to);
    m_wide.MoveTo(to);
    m_dashed.MoveTo(to);
    m_at = to;
}

void BitmapSurface::LineTo(const POINT& to) {
    if (m_line == Line::kThin) {
        m_writer.LineTo(to);
    } else if (m_line == Line::kDashed) {
        m_dashed.LineTo(to);
    } else if (m_line == Line::kWide) {
        if (!m_isWideReady) PrepareWide();
        m_wide.LineTo(to, [this](const POINT& start, const POINT& end) { WideLine(start, end); });
    }
    m_at = to;
}

// Takes all memory for wide lines now, while a failure can still be reported: a destructor may draw the collected
// lines.
void BitmapSurface::PrepareWide() {
    const int width = m_ink.penWidth;
    if (width <= WidePen::kWidest) {
        if (!m_widePen || m_widePen->Width() != width) m_widePen.emplace(width);
        m_widePen->Reserve(m_raster);
    }
    Canvas();
    m_isWideReady = true;
}

void BitmapSurface::WideLine(const POINT& from, const POINT& to) {
    const int width = m_ink.penWidth;
    if (width <= WidePen::kWidest && m_widePen->Draw(m_raster, from, to, kCairosUnusedByte | PixelOf(m_ink.penColor)))
        return;
    // One stroke per line: the picture must not depend on how many of them are drawn together.
    cairo_t* const cairo = Canvas().Begin();
    ClipTo(cairo, ClipBox());
    cairo_set_antialias(cairo, CAIRO_ANTIALIAS_NONE);
    UseRoundPen(cairo, m_ink);
    AddLine(cairo, from, to, width);
    cairo_stroke(cairo);
    Canvas().End();
}

void BitmapSurface::LinesTo(std::span<const POINT> points) {
    if (points.empty()) return;
    if (m_line == Line::kDashed) {
        m_dashed.LinesTo(points);
        m_at = points.back();
        return;
    }
    if (m_line != Line::kThin) return Surface::LinesTo(points);
    PolylineWriter writer = m_writer;  // used if no pixel to be written can be part of the line
    for (const POINT& to : points) writer.LineTo(to);
    m_writer = writer;
    m_at = points.back();
}

void BitmapSurface::Rectangle(const CRect& box) {
    Flush();
    if (m_line == Line::kNone) {
        // Without an outline the inside is one pixel smaller.
        FillRect({box.left, box.top, box.right - 1, box.bottom - 1}, m_ink.brush);
        return;
    }
    const CRect last(box.left, box.top, box.right - 1, box.bottom - 1);
    if (m_line == Line::kWide) {
        FillRect(box, m_ink.brush);
        cairo_t* const cairo = Canvas().Begin();
        ClipTo(cairo, ClipBox());
        cairo_set_antialias(cairo, CAIRO_ANTIALIAS_NONE);
        UseRoundPen(cairo, m_ink);
        AddOutline(cairo, box, m_ink);
        cairo_stroke(cairo);
        Canvas().End();
        return;
    }
    FillRect({box.left + 1, box.top + 1, last.right, last.bottom}, m_ink.brush);
    if (m_line == Line::kThin) {
        const std::uint32_t color = PixelOf(m_ink.penColor);
        FillBox(m_raster, {box.left, box.top, box.right, box.top + 1}, color);
        FillBox(m_raster, {box.left, last.bottom, box.right, box.bottom}, color);
        FillBox(m_raster, {box.left, box.top, box.left + 1, box.bottom}, color);
        FillBox(m_raster, {last.right, box.top, box.right, box.bottom}, color);
        return;
    }
    DashedPolyline outline = m_dashed;  // its polyline continues afterwards
    outline.MoveTo({last.left, last.top});
    outline.LineTo({last.right, last.top});
    outline.LineTo({last.right, last.bottom});
    outline.LineTo({last.left, last.bottom});
    outline.LineTo({last.left, last.top});
}

void BitmapSurface::Arc(const CRect& box, const POINT& start, const POINT& end) {
    Flush();
    if (m_line == Line::kNone) return;
    const bool isSmall = box.Width() <= PixelBuffer::kLongestSide && box.Height() <= PixelBuffer::kLongestSide &&
                         box.Width() > 0 && box.Height() > 0;
    if (m_line == Line::kThin && isSmall && IsWholeEllipse(box, start, end)) {
        ThinEllipse(box);
        return;
    }
    cairo_t* const cairo = Canvas().Begin();
    ClipTo(cairo, ClipBox());
    cairo_set_antialias(cairo, CAIRO_ANTIALIAS_NONE);
    UseRoundPen(cairo, m_ink);
    AddArc(cairo, box, start, end, m_ink.penWidth);
    cairo_stroke(cairo);
    Canvas().End();
}

void BitmapSurface::ThinEllipse(const CRect& box) {
    const std::uint32_t color = PixelOf(m_ink.penColor);
    const std::vector<EllipseSpan> rows = EllipseSpans(box.Width(), box.Height());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const int y = box.top + static_cast<int>(row);
        const auto bar = [&](int left, int right) {
            FillBox(m_raster, {box.left + left, y, box.left + right + 1, y + 1}, color);
        };
        const EllipseSpan& span = rows[row];
        if (row == 0 || row + 1 == rows.size()) {
            bar(span.left, span.right);
            continue;
        }
        // Pixels that both neighbouring rows reach past are inside.
        bar(span.left, std::max(span.left, std::max(rows[row - 1].left, rows[row + 1].left) - 1));
        bar(std::min(span.right, std::min(rows[row - 1].right, rows[row + 1].right) + 1), span.right);
    }
}

void BitmapSurface::FillRect(const CRect& box, const LOGBRUSH& brush) {
    Flush();
    if (brush.lbStyle == BS_NULL) return;
    const std::uint32_t color = PixelOf(brush.lbColor), gap = PixelOf(m_ink.backColor);
    if (brush.lbStyle != BS_HATCHED) {
        FillBox(m_raster, box, color);
        return;
    }
    const CRect inside = m_raster.Clipped(box);
    for (int y = inside.top; y < inside.bottom; ++y) {
        for (int x = inside.left; x < inside.right; ++x) {
            if (IsHatchPixel(brush.lbHatch, x, y)) {
                *m_raster.At(x, y) = color;
            } else if (m_ink.isOpaque) {
                *m_raster.At(x, y) = gap;
            }
        }
    }
}

void BitmapSurface::InvertRect(const CRect& box) {
    Flush();
    const CRect inside = m_raster.Clipped(box);
    for (int y = inside.top; y < inside.bottom; ++y) {
        for (int x = inside.left; x < inside.right; ++x) *m_raster.At(x, y) ^= 0x00FFFFFF;
    }
}

void BitmapSurface::Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
                         const CRect* box) {
    Flush();
    cairo_t* const cairo = Canvas().Begin();
    ClipTo(cairo, ClipBox());
    if (box != nullptr) ClipTo(cairo, *box);
    SetSource(cairo, color);
    font.Show(cairo, line, baseline.x, baseline.y);
    Canvas().End();
}

void BitmapSurface::Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) {
    Flush();
    const bool isCurve = style.isSmooth && style.stroke && !style.fill && !style.isClosed && style.isRound &&
                         UsableDashes(style).empty() && style.strokeWidth >= SmoothCurve::kThinnest &&
                         style.strokeWidth <= SmoothCurve::kWidest;
    if (isCurve) {
        SmoothCurve(m_raster, style.strokeWidth).Draw(corners, *style.stroke, UsableOpacity(style.opacity));
        return;
    }
    cairo_t* const cairo = Canvas().Begin();
    ClipTo(cairo, ClipBox());
    PaintShape(cairo, corners, style, std::numeric_limits<std::size_t>::max());
    Canvas().End();
}

void BitmapSurface::Label(const TextFont& font, const TextLine& line, const ShapePoint& start, double scale,
                          int quarterTurns, COLORREF color) {
    Flush();
    cairo_t* const cairo = Canvas().Begin();
    ClipTo(cairo, ClipBox());
    PaintLabel(cairo, font, line, start, scale, quarterTurns, color);
    Canvas().End();
}

void BitmapSurface::CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) {
    Flush();
    const CRect target = m_raster.Clipped(CRect(to, source.Size()));
    if (target.IsRectEmpty()) return;
    const int fromX = source.left + (target.left - to.x), fromY = source.top + (target.top - to.y);
    const std::size_t bytes = static_cast<std::size_t>(target.Width()) * sizeof(std::uint32_t);
    // A picture may be copied onto itself: rows that will be overwritten are copied first.
    const bool isDownward = &pixels == m_pPixels.get() && target.top > fromY;
    for (int i = 0; i < target.Height(); ++i) {
        const int row = isDownward ? target.Height() - 1 - i : i;
        std::memmove(m_raster.At(target.left, target.top + row), pixels.Row(fromY + row) + fromX, bytes);
    }
}

}  // namespace qel
