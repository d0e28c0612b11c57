#pragma once

#include <array>
#include <cstdint>

namespace qel {

/// Mixes a colour into pixels 0x??RRGGBB by shades: 0 leaves a pixel as it is, 255 gives it the colour. The compiler
/// makes vector code of it.
class ShadeMixer {
public:
    static constexpr int kMost = 16;  ///< pixels at a time

    /// @param color with the highest byte that drawn pixels get, which is 0xFF
    /// @param opacity 0 to 255
    ShadeMixer(std::uint32_t color, std::uint32_t opacity);

    /// @param count at most 16
    /// @param shades 16, even if there are less pixels
    void Mix(std::uint32_t* pixels, int count, const std::uint8_t* shades) const;

private:
    using Words = std::array<std::uint32_t, kMost>;

    const std::uint32_t m_color;
    const Words m_colors;
    const std::uint32_t m_opacity;
    std::array<std::uint8_t, 256> m_shadeOf;  // with the opacity
};

}  // namespace qel
