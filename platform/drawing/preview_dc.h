#pragma once

#include "qellib10/platform/drawing/dc.h"

/// A printer's page on the screen: the attribute context is the printer's, so that code which asks for resolution,
/// fonts and map modes lays out as for the printer; the output context is the screen's, onto which everything is
/// scaled. Neither context is deleted with this object.
class QELLIB10_API CPreviewDC : public CDC {
public:
    CPreviewDC() = default;
    ~CPreviewDC() override;

    void SetOutputDC(HDC screen) override;
    void SetAttribDC(HDC printer) override;
    void ReleaseOutputDC() override;
    void ReleaseAttribDC() override;

    /// Where the page's drawable corner lies on the screen, in its device units.
    void SetTopLeftOffset(const CSize& offset);
    /// How large the page is shown: @p numerator / @p denominator of its real size. Values below 1 are passed over.
    void SetScaleRatio(int numerator, int denominator);

    /// A position in the printer's device units in those of the screen, without the viewport's origin.
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
