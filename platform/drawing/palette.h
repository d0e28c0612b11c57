#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "qellib10/platform/drawing/pixel_buffer.h"

namespace qel {

/// A picture whose pixels are numbers of colours.
struct PalettePicture {
    std::vector<std::uint32_t> colors;  ///< 0x00RRGGBB, at most 256, in the order in which they appear
    std::vector<std::uint8_t> numbers;  ///< per pixel, row by row
};

/// Nothing if the picture has more than 256 colours.
std::optional<PalettePicture> WithPalette(const PixelBuffer& pixels);

}  // namespace qel
