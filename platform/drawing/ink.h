#pragma once

#include <optional>

#include "qellib10/platform/drawing/drawing_types.h"

namespace qel {

/// The selected objects and colours as a back end needs them, in device units.
struct Ink {
    int penStyle = PS_SOLID;  ///< one of the styles 0 to 6
    int penWidth = 1;         ///< at least 1
    COLORREF penColor = 0;
    LOGBRUSH brush{BS_SOLID, RGB(255, 255, 255), 0};
    COLORREF backColor = RGB(255, 255, 255);
    bool isOpaque = true;       ///< gaps of dashes and hatches show the background colour
    std::optional<CRect> clip;  ///< nothing is drawn outside; empty: nothing at all

    /// A pen that can be drawn by writing pixels: one device unit wide and without gaps.
    bool IsThinSolid() const noexcept { return penWidth == 1 && (penStyle == PS_SOLID || penStyle == PS_INSIDEFRAME); }
    /// Only thin pens show dashes; wider ones are solid.
    bool IsDashed() const noexcept { return penWidth == 1 && penStyle >= PS_DASH && penStyle <= PS_DASHDOTDOT; }
};

}  // namespace qel
