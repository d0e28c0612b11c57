#pragma once

#include <algorithm>
#include <cstdlib>

#include "qellib10/platform/drawing/raster.h"

namespace qel {

/// Whether DrawSteepLine can draw this line. Both ends must be in the clip.
inline bool IsSteep(POINT from, POINT to) noexcept {
    constexpr int kWidest = 2, kHighest = 4096;
    const int width = std::abs(to.x - from.x), height = std::abs(to.y - from.y);
    return width >= 1 && width <= kWidest && height >= width && height <= kHighest;
}

/// Like DrawThinLineInside, for the lines of a dense curve: any height, and up to two columns wide. Drawn step by step,
/// the processor would mispredict each change of column and each end. So all pixels of a block are written at their
/// places, and those past the end once more onto the last one.
template <class Pixel> void DrawSteepLine(const BasicRaster<Pixel>& raster, POINT from, POINT to, Pixel value) {
    constexpr int kBlock = 8;
    const int dx = to.x - from.x, height = std::abs(to.y - from.y);
    const std::ptrdiff_t down = to.y > from.y ? raster.stride : -raster.stride, right = dx > 0 ? 1 : -1;
    // The steps at which the line is halfway to the next column; a tie goes to the smaller coordinate.
    const int tie = dx > 0 ? 1 : 0;
    const bool isNarrow = std::abs(dx) == 1;
    const int second = isNarrow ? (height + tie + 1) / 2 : (height + tie + 3) / 4;
    const int third = isNarrow ? height : (3 * height + tie + 3) / 4;
    Pixel* const pixel = raster.At(from.x, from.y);
    for (int block = 0; block < height; block += kBlock) {
        for (int i = 0; i < kBlock; ++i) {
            const int step = std::min(block + i, height - 1);
            pixel[step * down + (int{step >= second} + int{step >= third}) * right] = value;
        }
    }
}

}  // namespace qel
