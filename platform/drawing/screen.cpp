#include "qellib10/platform/drawing/screen.h"

#include "qellib10/platform/drawing/drawing_types.h"

namespace qel {
namespace {

int Millimetres(int dots, int dotsPerInch) noexcept {
    return dotsPerInch > 0 ? static_cast<int>(LONGLONG{dots} * 254 / (LONGLONG{dotsPerInch} * 10)) : 0;
}

}  // namespace

int PictureCaps(int index, const SIZE& size, const SIZE& dotsPerInch, int bitsPerPixel) noexcept {
    switch (index) {
        case TECHNOLOGY:
            return DT_RASDISPLAY;
        case HORZSIZE:
            return Millimetres(size.cx, dotsPerInch.cx);
        case VERTSIZE:
            return Millimetres(size.cy, dotsPerInch.cy);
        case HORZRES:
            return size.cx;
        case VERTRES:
            return size.cy;
        case BITSPIXEL:
            return bitsPerPixel;
        case PLANES:
            return 1;
        case LOGPIXELSX:
            return dotsPerInch.cx;
        case LOGPIXELSY:
            return dotsPerInch.cy;
        default:
            return 0;
    }
}

}  // namespace qel
