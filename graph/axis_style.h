#pragma once

#include "qellib10/platform/drawing/drawing_types.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

/// How an axis is scaled and labelled. Fonts are given by face and height only; the height is the size in tenths of a
/// point, 0 is the surface's default size.
class QELLIB10_API CAxisStyle {
public:
    CAxisStyle() = default;
    CAxisStyle(const CAxisStyle&) = default;
    CAxisStyle& operator=(const CAxisStyle&) = default;
    virtual ~CAxisStyle();

    /// Where the texts are: 0 nowhere, 1 above the graph, 2 below, 3 left, 4 right of it.
    const int& GetViewMode() const { return m_nViewMode; }
    void SetViewMode(const int& viewMode) { m_nViewMode = viewMode; }

    // Values at the start and at the end of the axis.
    const double& GetMinRange() const { return m_dMinRange; }
    void SetMinRange(const double& range) { m_dMinRange = range; }
    const double& GetMaxRange() const { return m_dMaxRange; }
    void SetMaxRange(const double& range) { m_dMaxRange = range; }
    double GetAbsRange() const;  ///< the distance between both, not negative

    /// Dimension of the values, for example "mL".
    const CString& GetDimStr() const { return m_szDimStr; }
    void SetDimStr(const CString& text) { m_szDimStr = text; }
    // Texts that replace the values with label type 2.
    const CString& GetMaxStr() const { return m_szMaxStr; }
    void SetMaxStr(const CString& text) { m_szMaxStr = text; }
    const CString& GetMinStr() const { return m_szMinStr; }
    void SetMinStr(const CString& text) { m_szMinStr = text; }

    const LOGFONT& GetLabelFont() const { return m_labelFont; }
    void SetLabelFont(const LOGFONT& font) { m_labelFont = font; }
    const COLORREF& GetLabelColor() const { return m_labelColor; }
    void SetLabelColor(const COLORREF& color) { m_labelColor = color; }
    const LOGFONT& GetDimFont() const { return m_dimFont; }
    void SetDimFont(const LOGFONT& font) { m_dimFont = font; }
    const COLORREF& GetDimColor() const { return m_dimColor; }
    void SetDimColor(const COLORREF& color) { m_dimColor = color; }

    /// Numbers are at the right (0) or the left (1) of their field.
    const int& GetStrPosition() const { return m_nStrPosition; }
    void SetStrPosition(const int& position) { m_nStrPosition = position; }
    /// Values are written as a number (0), as days and time of seconds (1), or as the fixed texts (2).
    const int& GetLabelType() const { return m_nLabelType; }
    void SetLabelType(const int& labelType) { m_nLabelType = labelType; }
    const int& GetDigit() const { return m_nDigit; }  ///< columns of the integer part
    void SetDigit(const int& digit) { m_nDigit = digit; }
    const int& GetDecimal() const { return m_nDecimal; }  ///< digits after the point
    void SetDecimal(const int& decimal) { m_nDecimal = decimal; }

    /// The text of @p value. As a number it fills at least @p digit columns; with @p decimal places (1 or more) two
    /// more than both together; without places it is cut toward zero, not rounded. Longer numbers get more columns;
    /// more than 512 columns or places count as 512. Infinities and NaN become inf and nan.
    /// @param position 0 right-aligned, 1 left-aligned; for a number any other value gives the empty text
    /// @return the empty text for a label type other than 0 and 1
    static CString GetFormattedValue(double value, int labelType, int position, int digit, int decimal);

    /// The texts of the ends of the axis in this style; the fixed ones unchanged.
    /// @param position as above; below 0: this style's own
    CString GetFormattedMinValue(int position) const;
    CString GetFormattedMaxValue(int position) const;

private:
    int m_nViewMode = 0;
    double m_dMinRange = 0.0;
    double m_dMaxRange = 100.0;
    CString m_szDimStr;
    CString m_szMaxStr;
    CString m_szMinStr;
    LOGFONT m_labelFont{};
    COLORREF m_labelColor = 0;
    LOGFONT m_dimFont{};
    COLORREF m_dimColor = 0;
    int m_nStrPosition = 0;
    int m_nLabelType = 0;
    int m_nDigit = 3;
    int m_nDecimal = 1;
};
