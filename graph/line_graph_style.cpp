#include "qellib10/graph/line_graph_style.h"

CLineGraphStyle::CLineGraphStyle(unsigned long color, int style, int width)
    : m_color(static_cast<COLORREF>(color)), m_nStyle(style), m_nWidth(width) {}

CLineGraphStyle::~CLineGraphStyle() = default;

int CLineGraphStyle::operator==(const CLineGraphStyle& other) const {
    return m_color == other.m_color && m_nStyle == other.m_nStyle && m_nWidth == other.m_nWidth;
}
