#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/drawing/pixel_buffer.h"

namespace qel {

/// A picture as the bytes of a PNG file (ISO/IEC 15948): with a palette when it has at most 256 colours, else in 24
/// bits.
/// @throws DataError when memory runs out in the middle
std::vector<std::byte> EncodePng(const PixelBuffer& pixels, int dotsPerInch);

}  // namespace qel
