#pragma once

#include <vector>

#include "qellib10/platform/drawing/polyline_writer.h"
#include "qellib10/platform/drawing/vector_surface.h"

namespace qel {

/// Draws through a cairo_t of the application. If its units are whole pixels, we write thin lines into a mask
/// ourselves, with the same pixels as on a bitmap.
class CairoSurface : public VectorSurface {
public:
    CairoSurface(cairo_t* cairo, const CSize& size, int dotsPerInch);
    ~CairoSurface() override;

    int DeviceCaps(int index) const override;
    void SetInk(const Ink& ink) override;
    void MoveTo(const POINT& to) override;
    void LineTo(const POINT& to) override;
    void Flush() override;

protected:
    cairo_t* Cairo() override { return m_pCairo; }

private:
    bool IsWholePixels() const;
    void PaintMask();

    cairo_t* m_pCairo;
    CSize m_size;
    int m_nDotsPerInch;
    bool m_isMasked = false;    // thin lines go into the mask
    bool m_isMaskUsed = false;  // since it was last painted
    int m_nStride;
    std::vector<std::uint8_t> m_mask;
    BasicRaster<std::uint8_t> m_raster;
    BasicPolylineWriter<std::uint8_t> m_writer;
    Ink m_maskInk;
    POINT m_at{0, 0};
};

}  // namespace qel
