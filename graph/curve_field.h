#pragma once

#include <optional>
#include <vector>

#include "qellib10/graph/chart_axis_layout.h"
#include "qellib10/graph/chart_curves.h"

namespace qel {

/// Which parts of the plot curves pass through, and which are filled, in cells of a few points: texts avoid both.
class CurveField {
public:
    CurveField(const ChartSnapshot& data, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
               const ChartBox& plot);

    /// How many cells of the box have a part of a curve.
    int Hits(const ChartBox& box) const;
    /// How many cells of the box are filled by an area or a band, without those that have a part of a curve.
    int Filled(const ChartBox& box) const;
    /// How often a straight line is in such a cell, at steps of a cell.
    int HitsAlong(const ShapePoint& from, const ShapePoint& to) const;

private:
    /// In m_marked; none outside the plot.
    std::optional<std::size_t> CellAt(const ShapePoint& at) const;
    void Mark(const ShapePoint& at);
    void MarkLine(const std::vector<ShapePoint>& line);
    void MarkOutline(std::vector<ShapePoint> outline, const ChartBox& area);
    void MarkBox(const ChartBox& box);
    /// The cells whose middle is in an outline.
    void Fill(const std::vector<ShapePoint>& outline);
    template <class Counts> int CountIn(const ChartBox& box, const Counts& counts) const;
    void MarkSeries(const ChartSeries& series, const SeriesCurves& curves, const ChartBox& area);

    ChartBox m_plot;
    std::optional<ChartBox> m_area;  // of an axis with breaks: what is being marked
    double m_cell;
    int m_columns, m_rows;
    std::vector<bool> m_marked, m_filled;
};

}  // namespace qel
