#pragma once

#include "qellib10/platform/drawing/dc.h"

/// Shows a printer's page on the screen. The attribute context is the printer's, so that code which asks for
/// resolution, fonts and map modes lays out as for the printer. The output context is the screen's, and everything is
/// scaled to it. Neither context is deleted with this object.
class QELLIB10_API CPreviewDC : public CDC {
public:
    CPreviewDC() = default;
    ~CPreviewDC() override;

    void SetOutputDC(HDC screen) override;
    void SetAttribDC(HDC printer) override;
    void ReleaseOutputDC() override;
    void ReleaseAttribDC() override;

    /// The position of the corner of the page's drawable area on the screen, in screen device units.
    void SetTopLeftOffset(const CSize& offset);
    /// The size of the page on the screen: @p numerator / @p denominator of its real size. Values below 1 are ignored.
    void SetScaleRatio(int numerator, int denominator);

    /// Converts a position from device units of the printer to those of the screen, without the viewport's origin.
    void PrinterDPtoScreenDP(POINT* point) const;

    int SetMapMode(int mode) override;
    CPoint SetViewportOrg(int x, int y) override;
    CSize SetViewportExt(int cx, int cy) override;
    CPoint SetWindowOrg(int x, int y) override;
    CSize SetWindowExt(int cx, int cy) override;
    using CDC::SetViewportOrg;

private:
    void Mirror();

    CSize m_sizeTopLeft;
    int m_nNumerator = 1;
    int m_nDenominator = 1;
};
