#include "qellib10/platform/drawing/preview_dc.h"

#include <algorithm>
#include <numeric>

#include "qellib10/platform/drawing/device_context.h"

namespace {

// Both factors reduced to 32 bits, with the same ratio as far as possible.
SIZE Reduced(LONGLONG numerator, LONGLONG denominator) {
    const LONGLONG common = std::max<LONGLONG>(1, std::gcd(numerator, denominator));
    numerator /= common;
    denominator /= common;
    while (std::abs(numerator) > 0x7FFFFFFF || std::abs(denominator) > 0x7FFFFFFF) {
        numerator /= 2;
        denominator /= 2;
    }
    return {static_cast<LONG>(numerator != 0 ? numerator : 1), static_cast<LONG>(denominator != 0 ? denominator : 1)};
}

}  // namespace

CPreviewDC::~CPreviewDC() { Detach(); }

void CPreviewDC::SetOutputDC(HDC screen) {
    CDC::SetOutputDC(screen);
    Mirror();
}

void CPreviewDC::SetAttribDC(HDC printer) {
    CDC::SetAttribDC(printer);
    Mirror();
}

void CPreviewDC::ReleaseOutputDC() { CDC::SetOutputDC(nullptr); }

void CPreviewDC::ReleaseAttribDC() { CDC::SetAttribDC(nullptr); }

void CPreviewDC::SetTopLeftOffset(const CSize& offset) {
    m_sizeTopLeft = offset;
    Mirror();
}

void CPreviewDC::SetScaleRatio(int numerator, int denominator) {
    if (numerator < 1 || denominator < 1) return;
    m_nNumerator = numerator;
    m_nDenominator = denominator;
    Mirror();
}

void CPreviewDC::PrinterDPtoScreenDP(POINT* point) const {
    if (point == nullptr || Output() == nullptr || Attributes() == nullptr) return;
    const auto scaled = [this](LONG value, int index) {
        const SIZE ratio = Reduced(LONGLONG{Output()->DeviceCaps(index)} * m_nNumerator,
                                   LONGLONG{std::max(1, Attributes()->DeviceCaps(index))} * m_nDenominator);
        return MulDiv(value, ratio.cx, ratio.cy);
    };
    *point = {scaled(point->x, LOGPIXELSX), scaled(point->y, LOGPIXELSY)};
}

// Gives the output context the printer's mapping, scaled to the screen and moved to the page's corner.
void CPreviewDC::Mirror() {
    if (Output() == nullptr || Attributes() == nullptr) return;
    const qel::Mapping& printer = Attributes()->State().mapping;
    const auto ratio = [&](LONG viewport, LONG window, int index) {
        return Reduced(LONGLONG{viewport} * Output()->DeviceCaps(index) * m_nNumerator,
                       LONGLONG{window} * std::max(1, Attributes()->DeviceCaps(index)) * m_nDenominator);
    };
    const SIZE across = ratio(printer.ViewportExtent().cx, printer.WindowExtent().cx, LOGPIXELSX);
    const SIZE down = ratio(printer.ViewportExtent().cy, printer.WindowExtent().cy, LOGPIXELSY);
    POINT origin = printer.ViewportOrigin();
    PrinterDPtoScreenDP(&origin);
    CPoint corner(origin);
    corner.Offset(m_sizeTopLeft.cx, m_sizeTopLeft.cy);

    qel::Mapping& screen = Output()->Change().mapping;
    screen.SetMode(MM_ANISOTROPIC);
    screen.SetWindowExtent({across.cy, down.cy});
    screen.SetViewportExtent({across.cx, down.cx});
    screen.SetWindowOrigin(printer.WindowOrigin());
    screen.SetViewportOrigin(corner);
}

// The base class sets both contexts; the screen's is then derived again from the printer's, whose value is returned.

int CPreviewDC::SetMapMode(int mode) {
    const int before = GetMapMode();
    const bool isSet = CDC::SetMapMode(mode) != 0;
    Mirror();
    return isSet ? before : 0;
}

CPoint CPreviewDC::SetViewportOrg(int x, int y) {
    const CPoint before = GetViewportOrg();
    CDC::SetViewportOrg(x, y);
    Mirror();
    return before;
}

CSize CPreviewDC::SetViewportExt(int cx, int cy) {
    const CSize before = GetViewportExt();
    CDC::SetViewportExt(cx, cy);
    Mirror();
    return before;
}

CPoint CPreviewDC::SetWindowOrg(int x, int y) {
    const CPoint before = GetWindowOrg();
    CDC::SetWindowOrg(x, y);
    Mirror();
    return before;
}

CSize CPreviewDC::SetWindowExt(int cx, int cy) {
    const CSize before = GetWindowExt();
    CDC::SetWindowExt(cx, cy);
    Mirror();
    return before;
}
