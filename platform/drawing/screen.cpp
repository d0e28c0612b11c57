#include "qellib10/platform/drawing/screen.h"

#include "qellib10/platform/drawing/drawing_types.h"

namespace qel {
namespace {

int Millimetres(int dots, int dotsAnInch) noexcept {
    return dotsAnInch > 0 ? static_cast<int>(LONGLONG{dots} * 254 / (LONGLONG{dotsAnInch} * 10)) : 0;
}

}  // namespace

int PictureCaps(int index, const SIZE& size, const SIZE& dotsAnInch, int bitsAPixel) noexcept {
    switch (index) {
        case TECHNOLOGY:
            return DT_RASDISPLAY;
        case HORZSIZE:
            return Millimetres(size.cx, dotsAnInch.cx);
        case VERTSIZE:
            return Millimetres(size.cy, dotsAnInch.cy);
        case HORZRES:
            return size.cx;
        case VERTRES:
            return size.cy;
        case BITSPIXEL:
            return bitsAPixel;
        case PLANES:
            return 1;
        case LOGPIXELSX:
            return dotsAnInch.cx;
        case LOGPIXELSY:
            return dotsAnInch.cy;
        default:
            return 0;
    }
}

}  // namespace qel
