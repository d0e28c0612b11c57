#include "qellib10/platform/drawing/page_picture.h"

#include <algorithm>

#include "qellib10/platform/drawing/page_setup.h"
#include "qellib10/platform/drawing/preview_dc.h"
#include "qellib10/platform/operation.h"

namespace qel {

int DrawPagePicture(CBitmap& picture, HDC printer, int dotsPerInch, const std::function<bool(CDC&)>& draw) {
    picture.DeleteObject();
    Operation operation("qel::DrawPagePicture");
    if (dotsPerInch < 1 || dotsPerInch > PageSetup::kFinestResolution)
        return operation.Failed(FailureKind::kArgument, "", "a resolution that is not from 1 to 9600 dots per inch");
    const auto pixels = [&](int length, int resolution) {
        return MulDiv(GetDeviceCaps(printer, length), dotsPerInch, std::max(1, GetDeviceCaps(printer, resolution)));
    };
    const CSize size(pixels(PHYSICALWIDTH, LOGPIXELSX), pixels(PHYSICALHEIGHT, LOGPIXELSY));
    CDC screen;
    if (!screen.CreateCompatibleDC(nullptr) || !picture.CreateBitmap(size.cx, size.cy, 1, 32, nullptr))
        return operation.Ended(0);
    CBitmap* const before = screen.SelectObject(&picture);
    const CRect sheet({0, 0}, size);
    screen.FillSolidRect(&sheet, RGB(255, 255, 255));
    CPreviewDC preview;
    preview.SetOutputDC(screen);
    preview.SetAttribDC(printer);
    preview.SetTopLeftOffset({pixels(PHYSICALOFFSETX, LOGPIXELSX), pixels(PHYSICALOFFSETY, LOGPIXELSY)});
    preview.SetScaleRatio(dotsPerInch, screen.GetDeviceCaps(LOGPIXELSX));
    const bool isDrawn = draw(preview);
    screen.SelectObject(before);
    return operation.Ended(isDrawn, FailureKind::kRefused, "the caller's drawing failed");
}

}  // namespace qel
