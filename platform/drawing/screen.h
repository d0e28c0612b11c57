#pragma once

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// The resolution that screens are taken to have.
inline constexpr int kScreenDotsPerInch = 96;

/// Device units that a screen's pixel is long on a device: what the lengths of dashes and hatches are multiplied with.
constexpr double ScreenPixelLength(int dotsPerInch) noexcept {
    return double(dotsPerInch < 1 ? 1 : dotsPerInch) / kScreenDotsPerInch;
}

/// What GetDeviceCaps answers for a picture, which has no sheet around it; 0 for an index that is not known.
int PictureCaps(int index, const SIZE& size, const SIZE& dotsPerInch, int bitsPerPixel) noexcept;

}  // namespace qel
