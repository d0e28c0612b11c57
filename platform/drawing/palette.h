#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "qellib10/platform/drawing/pixel_buffer.h"

namespace qel {

/// A picture by the numbers of its colours.
struct PalettePicture {
    std::vector<std::uint32_t> colors;  ///< 0x00RRGGBB, at most 256, in the order in which they appear
    std::vector<std::uint8_t> numbers;  ///< of each pixel, row by row
};

/// Nothing when the picture has more than 256 colours.
std::optional<PalettePicture> WithPalette(const PixelBuffer& pixels);

}  // namespace qel
