#pragma once

#include "qellib10/graph/chart_layout.h"

namespace qel {

/// Draws what belongs to the axes: their lines and ticks, the grid, limits, the marks of breaks.
class ChartFrame {
public:
    ChartFrame(const Chart& chart, ChartCanvas& canvas, const ChartLayout& layout)
        : m_chart(chart), m_theme(chart.theme), m_canvas(canvas), m_layout(layout) {}

    void PaintGrid();
    void PaintAxes();
    /// The bands of limits, within a box.
    void PaintBands(const ChartBox& box);
    void PaintLimits();
    /// From the end of a limit to its label, if that is not next to it.
    void PaintLeader(const LimitLabel& label);
    /// Across a bar that goes on after the break at @p edge.
    void PaintCut(double left, double right, double edge);

private:
    bool HasGrid(const AxisLayout& axis) const;
    std::vector<ChartBox> Pieces(const AxisLayout& axis) const;
    void Across(const AxisLayout& axis, double place, COLORREF color, double width,
                std::span<const double> dashes = {});
    void PaintAxis(const AxisLayout& axis);
    void PaintBand(const ChartLimit& limit, const ChartBox& box);
    void PaintLimit(const ChartLimit& limit);
    COLORREF ColorOf(const ChartLimit& limit) const;

    const Chart& m_chart;
    const ChartTheme& m_theme;
    ChartCanvas& m_canvas;
    const ChartLayout& m_layout;
};

}  // namespace qel
