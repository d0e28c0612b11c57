#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/drawing/pixel_buffer.h"

namespace qel {

/// A picture as the bytes of a PNG file (ISO/IEC 15948): with a palette if it has at most 256 colours, else in 24 bits.
/// @throws DataError if memory runs out while encoding
std::vector<std::byte> EncodePng(const PixelBuffer& pixels, int dotsPerInch);

}  // namespace qel
