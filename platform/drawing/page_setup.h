#pragma once

#include "qellib10/platform/drawing/geometry.h"
#include "qellib10/platform/export.h"

namespace qel {

/// A sheet and its resolution.
struct QELLIB10_API PageSetup {
    /// Limits of a page. More device units than that could not be drawn on.
    static constexpr int kLongestSide = 1'000'000, kFinestResolution = 9600;

    SIZE sheet{21000, 29700};  ///< hundredths of a millimetre, as the page is read (landscape: wider than high)
    SIZE dotsPerInch{600, 600};
    RECT margins{0, 0, 0, 0};  ///< the part that the device cannot reach, hundredths of a millimetre from each edge

    /// The sheet and its margins in device units; the drawable area starts at the left and top margin.
    CSize SheetDots() const noexcept;
    CRect MarginDots() const noexcept;
    CSize DrawableDots() const noexcept;
    /// Whether everything is within the limits, no margin is negative, and there is space between the margins.
    bool IsDrawable() const noexcept;
};

}  // namespace qel
