#pragma once

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// The resolution that screens are taken to have.
inline constexpr int kScreenDotsAnInch = 96;

/// Device units that a screen's pixel is long on a device: what the lengths of dashes and hatches are multiplied with.
constexpr double ScreenPixelLength(int dotsAnInch) noexcept {
    return double(dotsAnInch < 1 ? 1 : dotsAnInch) / kScreenDotsAnInch;
}

/// What GetDeviceCaps answers for a picture, which has no sheet around it; 0 for an index that is not known.
int PictureCaps(int index, const SIZE& size, const SIZE& dotsAnInch, int bitsAPixel) noexcept;

}  // namespace qel
