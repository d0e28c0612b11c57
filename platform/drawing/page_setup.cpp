#include "qellib10/platform/drawing/page_setup.h"

#include <algorithm>
#include <limits>

namespace qel {
namespace {

constexpr int kHundredthsPerInch = 2540;

}  // namespace

CSize PageSetup::SheetDots() const noexcept {
    return {MulDiv(sheet.cx, dotsPerInch.cx, kHundredthsPerInch), MulDiv(sheet.cy, dotsPerInch.cy, kHundredthsPerInch)};
}

CRect PageSetup::MarginDots() const noexcept {
    return {MulDiv(margins.left, dotsPerInch.cx, kHundredthsPerInch),
            MulDiv(margins.top, dotsPerInch.cy, kHundredthsPerInch),
            MulDiv(margins.right, dotsPerInch.cx, kHundredthsPerInch),
            MulDiv(margins.bottom, dotsPerInch.cy, kHundredthsPerInch)};
}

CSize PageSetup::DrawableDots() const noexcept {
    const CSize all = SheetDots();
    const CRect edges = MarginDots();
    const auto between = [](LONGLONG length, LONG before, LONG after) {
        return static_cast<int>(std::clamp<LONGLONG>(length - before - after, 0, std::numeric_limits<int>::max()));
    };
    return {between(all.cx, edges.left, edges.right), between(all.cy, edges.top, edges.bottom)};
}

bool PageSetup::IsDrawable() const noexcept {
    const auto isSide = [](LONG side) { return side > 0 && side <= kLongestSide; };
    const auto isResolution = [](LONG dots) { return dots > 0 && dots <= kFinestResolution; };
    const CSize drawable = DrawableDots();
    return isSide(sheet.cx) && isSide(sheet.cy) && isResolution(dotsPerInch.cx) && isResolution(dotsPerInch.cy) &&
           std::min({margins.left, margins.top, margins.right, margins.bottom}) >= 0 && drawable.cx > 0 &&
           drawable.cy > 0;
}

}  // namespace qel
