#pragma once

#include "qellib10/graph/qel_graph.h"

/// A pen that draws within the area, for as long as this object lives.
class CQelGraph::PenInArea {
public:
    PenInArea(CQelGraph& graph, CDC* dc, const CLineGraphStyle& style) : m_graph(graph), m_pDC(dc) {
        m_graph.DCClipDrawArea(dc, &m_region);
        m_pBefore = m_graph.DCCreateAndSelectPen(dc, &m_pen, style.GetStyle(), style.GetWidth(), style.GetColor());
    }
    ~PenInArea() {
        m_pDC->SelectObject(m_pBefore);
        m_graph.DCClipDrawArea(m_pDC, nullptr);
    }
    PenInArea(const PenInArea&) = delete;
    PenInArea& operator=(const PenInArea&) = delete;

    void MoveTo(POINT to) { m_graph.DCMoveTo(m_pDC, to.x, to.y); }
    void LineTo(POINT to) { m_graph.DCLineTo(m_pDC, to.x, to.y); }

private:
    CQelGraph& m_graph;
    CDC* m_pDC;
    CRgn m_region;
    CPen m_pen;
    CPen* m_pBefore;
};
