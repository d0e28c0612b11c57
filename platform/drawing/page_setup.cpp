#include "qellib10/platform/drawing/page_setup.h"

#include <algorithm>

namespace qel {
namespace {

constexpr int kHundredthsAnInch = 2540;

}  // namespace

CSize PageSetup::SheetDots() const noexcept {
    return {MulDiv(sheet.cx, dotsAnInch.cx, kHundredthsAnInch), MulDiv(sheet.cy, dotsAnInch.cy, kHundredthsAnInch)};
}

CRect PageSetup::MarginDots() const noexcept {
    return {MulDiv(margins.left, dotsAnInch.cx, kHundredthsAnInch),
            MulDiv(margins.top, dotsAnInch.cy, kHundredthsAnInch),
            MulDiv(margins.right, dotsAnInch.cx, kHundredthsAnInch),
            MulDiv(margins.bottom, dotsAnInch.cy, kHundredthsAnInch)};
}

CSize PageSetup::DrawableDots() const noexcept {
    const CSize all = SheetDots();
    const CRect edges = MarginDots();
    return {std::max(0, all.cx - edges.left - edges.right), std::max(0, all.cy - edges.top - edges.bottom)};
}

}  // namespace qel
