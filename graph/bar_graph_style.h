#pragma once

#include "qellib10/platform/drawing/drawing_types.h"

/// How bars are drawn: outline and filling. Initially a black solid outline of one unit, hatched in black from the
/// lower left to the upper right, 10 units wide.
class CBarGraphStyle {
public:
    const COLORREF& GetLineColor() const { return m_lineColor; }
    void SetLineColor(const COLORREF& color) { m_lineColor = color; }
    const int& GetLineStyle() const { return m_nLineStyle; }
    void SetLineStyle(const int& style) { m_nLineStyle = style; }
    const int& GetLineWidth() const { return m_nLineWidth; }
    void SetLineWidth(const int& width) { m_nLineWidth = width; }
    const LOGBRUSH& GetBarBrush() const { return m_barBrush; }
    void SetBarBrush(const LOGBRUSH& brush) { m_barBrush = brush; }
    const int& GetBarWidth() const { return m_nBarWidth; }  ///< device units
    void SetBarWidth(const int& width) { m_nBarWidth = width; }

private:
    COLORREF m_lineColor = 0;
    int m_nLineStyle = PS_SOLID;
    int m_nLineWidth = 1;
    LOGBRUSH m_barBrush{BS_HATCHED, 0, HS_BDIAGONAL};
    int m_nBarWidth = 10;
};
