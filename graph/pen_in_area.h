#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "qellib10/graph/qel_graph.h"

/// A pen that draws within the area, for as long as this object lives.
class CQelGraph::PenInArea {
public:
    PenInArea(CQelGraph& graph, CDC* dc, const CLineGraphStyle& style) : m_graph(graph), m_pDC(dc) {
        m_graph.DCClipDrawArea(dc, &m_region);
        m_pBefore = m_graph.DCCreateAndSelectPen(dc, &m_pen, style.GetStyle(), style.GetWidth(), style.GetColor());
    }
    ~PenInArea() {
        DrawLines();
        m_pDC->SelectObject(m_pBefore);
        m_graph.DCClipDrawArea(m_pDC, nullptr);
    }
    PenInArea(const PenInArea&) = delete;
    PenInArea& operator=(const PenInArea&) = delete;

    void MoveTo(POINT to) {
        DrawLines();
        m_graph.DCMoveTo(m_pDC, to.x, to.y);
    }
    void LineTo(POINT to) {
        if (m_nCount == m_points.size()) DrawLines();
        m_points[m_nCount++] = to;
    }
    /// Space for the next points, at least two of them.
    std::span<POINT> FreeSpace() {
        if (m_points.size() - m_nCount < 2) DrawLines();
        return std::span(m_points).subspan(m_nCount);
    }
    /// Draws to the first @p count of the points that were written there.
    void Take(std::size_t count) { m_nCount += count; }

private:
    void DrawLines() {
        m_graph.DCPolylineTo(m_pDC, m_points.data(), static_cast<int>(m_nCount));
        m_nCount = 0;
    }

    CQelGraph& m_graph;
    CDC* m_pDC;
    CRgn m_region;
    CPen m_pen;
    CPen* m_pBefore;
    // Lines are drawn in batches: computing positions and writing pixels are faster separately.
    std::array<POINT, 1024> m_points;
    std::size_t m_nCount = 0;
};
