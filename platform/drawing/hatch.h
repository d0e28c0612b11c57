#pragma once

namespace qel {

/// Side of the square that a hatch repeats, in screen pixels.
inline constexpr int kHatchCell = 8;

/// Whether a pixel belongs to the lines of a hatch. Its cells start at the device's corner, so that neighbouring areas
/// fit together. An unknown hatch is the crossed one. Coordinates are not negative.
constexpr bool IsHatchPixel(int hatch, int x, int y) noexcept {
    const bool isHorizontal = y % kHatchCell == 3, isVertical = x % kHatchCell == 4;
    const bool isForward = x % kHatchCell == y % kHatchCell, isBackward = (x + y) % kHatchCell == 7;
    switch (hatch) {
        case 0:
            return isHorizontal;
        case 1:
            return isVertical;
        case 2:
            return isForward;
        case 3:
            return isBackward;
        case 5:
            return isForward || isBackward;
        default:
            return isHorizontal || isVertical;
    }
}

}  // namespace qel
