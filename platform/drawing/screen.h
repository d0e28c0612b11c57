#pragma once

#include "qellib10/platform/drawing/geometry.h"

namespace qel {

/// The resolution that all screens are assumed to have.
inline constexpr int kScreenDotsPerInch = 96;

/// The length of a screen pixel in device units: lengths of dashes and hatches are multiplied by it.
constexpr double ScreenPixelLength(int dotsPerInch) noexcept {
    return double(dotsPerInch < 1 ? 1 : dotsPerInch) / kScreenDotsPerInch;
}

/// What GetDeviceCaps returns for a picture, which has no sheet around it; 0 for an unknown index.
int PictureCaps(int index, const SIZE& size, const SIZE& dotsPerInch, int bitsPerPixel) noexcept;

}  // namespace qel
