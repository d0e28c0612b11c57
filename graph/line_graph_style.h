#pragma once

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"

/// The pen of a line: initially black, solid, one unit wide.
class QELLIB10_API CLineGraphStyle {
public:
    CLineGraphStyle() = default;
    /// @param color 0x00BBGGRR
    /// @param style a pen style of the surface, PS_SOLID and so on
    /// @param width device units
    CLineGraphStyle(unsigned long color, int style, int width);
    CLineGraphStyle(const CLineGraphStyle&) = default;
    CLineGraphStyle& operator=(const CLineGraphStyle&) = default;
    virtual ~CLineGraphStyle();

    const COLORREF& GetColor() const { return m_color; }
    void SetColor(const COLORREF& color) { m_color = color; }
    const int& GetStyle() const { return m_nStyle; }
    void SetStyle(const int& style) { m_nStyle = style; }
    const int& GetWidth() const { return m_nWidth; }
    void SetWidth(const int& width) { m_nWidth = width; }

    /// 1 if colour, style and width are equal.
    int operator==(const CLineGraphStyle& other) const;
    int operator!=(const CLineGraphStyle& other) const { return !(*this == other); }

private:
    COLORREF m_color = 0;
    int m_nStyle = PS_SOLID;
    int m_nWidth = 1;
};
