#pragma once

namespace qel {

/// Whether a pixel belongs to the lines of a hatch: cells of 8 x 8 pixels, tied to the device's corner so that
/// neighbouring areas fit. An unknown hatch is the crossed one. Coordinates are not negative.
constexpr bool IsHatchPixel(int hatch, int x, int y) noexcept {
    const bool isHorizontal = y % 8 == 3, isVertical = x % 8 == 4;
    const bool isForward = x % 8 == y % 8, isBackward = (x + y) % 8 == 7;
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
