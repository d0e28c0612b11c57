#include "qellib10/platform/drawing/cairo_canvas.h"

#include <cairo.h>

namespace qel {

CairoCanvas::CairoCanvas(std::shared_ptr<PixelBuffer> pixels) : m_pPixels(std::move(pixels)) {
    cairo_surface_t* const surface =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(m_pPixels->Row(0)), CAIRO_FORMAT_RGB24,
                                            m_pPixels->Width(), m_pPixels->Height(), m_pPixels->Width() * 4);
    m_pCairo = cairo_create(surface);
    cairo_surface_destroy(surface);
}

CairoCanvas::~CairoCanvas() { cairo_destroy(m_pCairo); }

cairo_t* CairoCanvas::Begin() {
    cairo_surface_mark_dirty(cairo_get_target(m_pCairo));
    cairo_save(m_pCairo);
    return m_pCairo;
}

void CairoCanvas::End() {
    cairo_restore(m_pCairo);
    cairo_new_path(m_pCairo);
    cairo_surface_flush(cairo_get_target(m_pCairo));
}

}  // namespace qel
