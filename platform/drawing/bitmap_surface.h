#pragma once

#include <memory>
#include <optional>

#include "qellib10/platform/drawing/dashed_polyline.h"
#include "qellib10/platform/drawing/pixel_buffer.h"
#include "qellib10/platform/drawing/polyline_writer.h"
#include "qellib10/platform/drawing/surface.h"
#include "qellib10/platform/drawing/wide_pen.h"
#include "qellib10/platform/drawing/wide_polyline.h"

namespace qel {

class CairoCanvas;

/// A picture in memory. We write lines, fills, inversion, copies and clips into the pixels ourselves. Cairo draws
/// partial arcs, text, outlines of wide pens, wide lines that leave the clip at the left or right, and lines of pens
/// wider than 32.
///
/// Vertical lines of wide pens are collected first, like thin lines. If two contexts draw on one picture, flush each
/// before the other draws, to keep the order.
class BitmapSurface : public Surface {
public:
    explicit BitmapSurface(const SIZE& dotsPerInch);
    ~BitmapSurface() override;

    int DeviceCaps(int index) const override;
    void SetInk(const Ink& ink) override;
    void MoveTo(const POINT& to) override;
    void LineTo(const POINT& to) override;
    void LinesTo(std::span<const POINT> points) override;
    void Rectangle(const CRect& box) override;
    void Arc(const CRect& box, const POINT& start, const POINT& end) override;
    void FillRect(const CRect& box, const LOGBRUSH& brush) override;
    void InvertRect(const CRect& box) override;
    void Text(const TextFont& font, const TextLine& line, const POINT& baseline, COLORREF color,
              const CRect* box) override;
    void Shape(std::span<const ShapePoint> corners, const ShapeStyle& style) override;
    void Label(const TextFont& font, const TextLine& line, const ShapePoint& start, double scale, int quarterTurns,
               COLORREF color) override;
    void CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) override;
    bool SelectPixels(std::shared_ptr<PixelBuffer> pixels) override;
    void Flush() override;
    PixelBuffer* Pixels() override { return m_pPixels.get(); }

private:
    enum class Line { kNone, kThin, kDashed, kWide };

    void PrepareWide();
    void WideLine(const POINT& from, const POINT& to);
    void ThinEllipse(const CRect& box);
    CairoCanvas& Canvas();
    CRect ClipBox() const;
    void Rebuild();

    SIZE m_dotsPerInch;
    std::shared_ptr<PixelBuffer> m_pPixels;
    std::unique_ptr<CairoCanvas> m_pCanvas;  // created when Cairo is first needed
    Ink m_ink;
    Line m_line = Line::kThin;
    Raster m_raster;  // the pixels within the clip
    PolylineWriter m_writer;
    DashedPolyline m_dashed;
    WidePolyline m_wide;
    std::optional<WidePen> m_widePen;  // created when first needed
    bool m_isWideReady = false;        // whether no wide line needs more memory
    POINT m_at{0, 0};
};

}  // namespace qel
