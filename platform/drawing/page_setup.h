#pragma once

#include "qellib10/platform/drawing/geometry.h"
#include "qellib10/platform/export.h"

namespace qel {

/// A sheet and the device units on it.
struct QELLIB10_API PageSetup {
    SIZE sheet{21000, 29700};  ///< hundredths of a millimetre, as it is read (landscape: wider than high)
    SIZE dotsAnInch{600, 600};
    RECT margins{0, 0, 0, 0};  ///< what the device cannot reach, hundredths of a millimetre from each edge

    /// The sheet and its margins in device units; the drawable area begins at the left and top margin.
    CSize SheetDots() const noexcept;
    CRect MarginDots() const noexcept;
    CSize DrawableDots() const noexcept;
};

}  // namespace qel
