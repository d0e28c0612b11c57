#include "qellib10/platform/drawing/cairo_surface.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

#include "qellib10/platform/drawing/cairo_shapes.h"
#include "qellib10/platform/drawing/screen.h"

namespace qel {

CairoSurface::CairoSurface(cairo_t* cairo, const CSize& size, int dotsPerInch)
    : m_pCairo(cairo_reference(cairo)),
      m_size(size),
      m_nDotsPerInch(dotsPerInch),
      m_nStride(cairo_format_stride_for_width(CAIRO_FORMAT_A8, size.cx)),
      m_writer(m_raster, 0) {}

CairoSurface::~CairoSurface() { cairo_destroy(m_pCairo); }

int CairoSurface::DeviceCaps(int index) const {
    return PictureCaps(index, m_size, {m_nDotsPerInch, m_nDotsPerInch}, 32);
}

bool CairoSurface::IsWholePixels() const {
    double scaleX = 0, scaleY = 0;
    cairo_surface_get_device_scale(cairo_get_group_target(m_pCairo), &scaleX, &scaleY);
    cairo_matrix_t m;
    cairo_get_matrix(m_pCairo, &m);
    return scaleX == 1 && scaleY == 1 && m.xx == 1 && m.yy == 1 && m.xy == 0 && m.yx == 0 && m.x0 == std::floor(m.x0) &&
           m.y0 == std::floor(m.y0);
}

void CairoSurface::SetInk(const Ink& ink) {
    Flush();
    VectorSurface::SetInk(ink);
    m_maskInk = ink;
    m_isMasked = ink.IsThinSolid() && IsWholePixels();
    if (!m_isMasked) return;
    if (m_mask.empty()) m_mask.resize(static_cast<std::size_t>(m_nStride) * static_cast<std::size_t>(m_size.cy));
    CRect clip(0, 0, m_size.cx, m_size.cy);
    if (ink.clip) clip.IntersectRect(clip, *ink.clip);
    m_raster = {m_mask.data(), m_nStride, clip.left, clip.top, clip.right, clip.bottom};
    m_writer = BasicPolylineWriter<std::uint8_t>(m_raster, 255);
    m_writer.MoveTo(m_at);
}

void CairoSurface::MoveTo(const POINT& to) {
    m_at = to;
    if (m_isMasked) {
        m_writer.MoveTo(to);
    } else {
        VectorSurface::MoveTo(to);
    }
}

void CairoSurface::LineTo(const POINT& to) {
    m_at = to;
    if (m_isMasked) {
        m_writer.LineTo(to);
        m_isMaskUsed = true;
    } else {
        VectorSurface::LineTo(to);
    }
}

void CairoSurface::Flush() {
    if (m_isMaskUsed) PaintMask();
    VectorSurface::Flush();
}

void CairoSurface::PaintMask() {
    m_isMaskUsed = false;
    m_writer.Flush();
    cairo_surface_t* const mask =
        cairo_image_surface_create_for_data(m_mask.data(), CAIRO_FORMAT_A8, m_size.cx, m_size.cy, m_nStride);
    cairo_save(m_pCairo);
    SetSource(m_pCairo, m_maskInk.penColor);
    cairo_mask_surface(m_pCairo, mask, 0, 0);
    cairo_restore(m_pCairo);
    cairo_surface_finish(mask);
    cairo_surface_destroy(mask);
    std::ranges::fill(m_mask, std::uint8_t{0});
}

}  // namespace qel
