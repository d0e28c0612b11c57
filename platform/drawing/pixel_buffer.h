#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace qel {

class Surface;

/// The pixels of a bitmap, row after row from the top, each 0x00RRGGBB: the form of Cairo's RGB24 pictures.
class PixelBuffer {
public:
    /// Cairo's limit of a side.
    static constexpr int kLongestSide = 32767;

    static bool IsSize(int width, int height) {
        return width >= 1 && height >= 1 && width <= kLongestSide && height <= kLongestSide;
    }
    /// A black picture, or null if the size is not valid or memory runs out.
    static std::shared_ptr<PixelBuffer> Create(int width, int height);

    int Width() const noexcept { return m_nWidth; }
    int Height() const noexcept { return m_nHeight; }
    std::uint32_t* Row(int y) noexcept { return m_pPixels.get() + std::size_t(y) * std::size_t(m_nWidth); }
    const std::uint32_t* Row(int y) const noexcept { return m_pPixels.get() + std::size_t(y) * std::size_t(m_nWidth); }

    // Surfaces that draw here may collect lines until somebody reads the pixels directly.
    void AddSurface(Surface& surface) { m_arySurface.push_back(&surface); }
    void RemoveSurface(Surface& surface) noexcept { std::erase(m_arySurface, &surface); }
    /// Makes all of them draw what they have collected.
    void Settle();

private:
    struct Free {
        void operator()(std::uint32_t* pixels) const noexcept { std::free(pixels); }
    };

    PixelBuffer(int width, int height, std::uint32_t* pixels) : m_nWidth(width), m_nHeight(height), m_pPixels(pixels) {}

    int m_nWidth;
    int m_nHeight;
    std::unique_ptr<std::uint32_t[], Free> m_pPixels;
    std::vector<Surface*> m_arySurface;
};

}  // namespace qel
