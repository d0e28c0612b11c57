#include "qellib10/platform/drawing/pixel_buffer.h"

#include <new>

#include "qellib10/platform/drawing/surface.h"

namespace qel {

std::shared_ptr<PixelBuffer> PixelBuffer::Create(int width, int height) {
    if (!IsSize(width, height)) return nullptr;
    // The kernel clears it page by page at the first access, so that a large picture costs nothing before it is drawn
    // on.
    void* const pixels = std::calloc(std::size_t(width) * std::size_t(height), sizeof(std::uint32_t));
    if (pixels == nullptr) return nullptr;
    return std::shared_ptr<PixelBuffer>(new PixelBuffer(width, height, static_cast<std::uint32_t*>(pixels)));
}

void PixelBuffer::Settle() {
    for (Surface* const surface : m_arySurface) surface->Flush();
}

}  // namespace qel
