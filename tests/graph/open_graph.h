#pragma once

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
