#pragma once

#include <memory>

#include "qellib10/platform/drawing/pixel_buffer.h"

using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// Cairo on the pixels of a bitmap, which other code writes as well: call Begin before and End after each use of Cairo.
class CairoCanvas {
public:
    explicit CairoCanvas(std::shared_ptr<PixelBuffer> pixels);
    ~CairoCanvas();
    CairoCanvas(const CairoCanvas&) = delete;
    CairoCanvas& operator=(const CairoCanvas&) = delete;

    cairo_t* Begin();
    void End();

private:
    std::shared_ptr<PixelBuffer> m_pPixels;
    cairo_t* m_pCairo;
};

}  // namespace qel
