#pragma once

#include <vector>

#include "qellib10/platform/drawing/column_reducer.h"
#include "qellib10/platform/drawing/surface.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// A back end whose shapes stay shapes: paths and texts of Cairo, one Cairo unit per device unit. Lines are collected
/// into one path until the pen changes or something else is drawn.
class VectorSurface : public Surface {
public:
    void SetInk(const Ink& ink) override;
    void MoveTo(const POINT& to) override;
    void LineTo(const POINT& to) override;
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
    void Flush() override;

protected:
    /// The current target; null if there is none (no page is started).
    virtual cairo_t* Cairo() = 0;
    /// The length of a screen pixel in device units: lengths of dashes and hatches are multiplied by it.
    double PixelLength() const;

private:
    struct Line {
        std::vector<CPoint> points;
    };

    /// Runs @p step with the clip of the ink, between save and restore; does nothing without a page.
    template <class Step> void Draw(const Step& step, bool isClipped = true);
    bool IsInsideClip() const;
    void StrokePath(cairo_t* cairo);
    void Hatch(cairo_t* cairo, const CRect& box, int hatch);

    Ink m_ink;
    std::vector<Line> m_aryLine;
    std::size_t m_nPoints = 0;
    ColumnReducer m_reducer;
    CPoint m_at;
    bool m_isLineOpen = false;
};

}  // namespace qel
