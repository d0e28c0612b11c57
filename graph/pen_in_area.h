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
    /// Where the next points may be put, at least two of them.
    std::span<POINT> FreeSpace() {
        if (m_points.size() - m_nCount < 2) DrawLines();
        return std::span(m_points).subspan(m_nCount);
    }
    /// Goes to the first @p count of the points that were put there.
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
    // Lines are drawn in runs: to find where points lie and to write pixels goes faster each for itself.
    std::array<POINT, 1024> m_points;
    std::size_t m_nCount = 0;
};
