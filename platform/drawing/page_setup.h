#pragma once

#include "qellib10/platform/drawing/geometry.h"
#include "qellib10/platform/export.h"

namespace qel {

/// A sheet and the device units on it.
struct QELLIB10_API PageSetup {
    /// Limits of a page, beyond which its device units would be more than anything here draws on.
    static constexpr int kLongestSide = 1'000'000, kFinestResolution = 9600;

    SIZE sheet{21000, 29700};  ///< hundredths of a millimetre, as it is read (landscape: wider than high)
    SIZE dotsPerInch{600, 600};
    RECT margins{0, 0, 0, 0};  ///< what the device cannot reach, hundredths of a millimetre from each edge

    /// The sheet and its margins in device units; the drawable area begins at the left and top margin.
    CSize SheetDots() const noexcept;
    CRect MarginDots() const noexcept;
    CSize DrawableDots() const noexcept;
    /// Whether all is within the limits, no margin below 0, and something left between the margins.
    bool IsDrawable() const noexcept;
};

}  // namespace qel
