#pragma once

#include <vector>

#include "qellib10/platform/drawing/column_reducer.h"
#include "qellib10/platform/drawing/surface.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// A back end whose shapes stay shapes: paths and texts of Cairo, one unit of it a device unit. Lines are collected
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
    void CopyPixels(const PixelBuffer& pixels, const CRect& source, const POINT& to) override;
    void Flush() override;

protected:
    /// Where to draw now; null: nowhere (no page is begun).
    virtual cairo_t* Cairo() = 0;
    /// Device units that a screen's pixel is long here: what the lengths of dashes and hatches are multiplied with.
    double PixelLength() const;

private:
    struct Line {
        std::vector<CPoint> points;
    };

    /// Cairo with the clip of the ink, between save and restore; nothing is done without a page.
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
