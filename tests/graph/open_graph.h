#pragma once

#include "../support/canvas.h"
#include "qellib10/graph/qel_graph.h"

/// A graph without texts whose area can be seen, and its mode set.
struct OpenGraph : CQelGraph {
    explicit OpenGraph(int coordinateMode = 0) {
        m_nCoordinateMode = coordinateMode;
        InitializeParameter(-1);
        SetDrawSize(400, 300);
        SetXLabelViewMode(0, 0);
        SetYLabelViewMode(0, 0);
    }
    using CQelGraph::BarDraw;
    using CQelGraph::DataToXPixel;
    using CQelGraph::DataToYPixel;
    using CQelGraph::GetDrawArea;
    using CQelGraph::GetValueFromPos;
    using CQelGraph::LineDraw;
    using CQelGraph::m_rectDrawArea;
    using CQelGraph::RecorderDrawX;
};

/// The outline of an area as a pen draws it by itself.
inline void DrawOutline(CDC& dc, const CRect& area, int width) {
    CPen pen(PS_SOLID, width, kRed);
    dc.SelectObject(&pen);
    dc.MoveTo(area.left, area.top);
    for (const CPoint& corner : {CPoint(area.left, area.bottom), CPoint(area.right, area.bottom),
                                 CPoint(area.right, area.top), CPoint(area.left, area.top)})
        dc.LineTo(corner);
}
