#pragma once

#include <optional>
#include <vector>

#include "qellib10/graph/chart_curves.h"

namespace qel {

/// Which parts of the plot curves pass through, in cells of a few points: texts avoid them.
class CurveField {
public:
    CurveField(const ChartSnapshot& data, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
               const ChartBox& plot);

    /// How many cells of the box have a part of a curve.
    int Hits(const ChartBox& box) const;
    /// How often a straight line is in such a cell, at steps of a cell.
    int HitsAlong(const ShapePoint& from, const ShapePoint& to) const;

private:
    /// In m_marked; none outside the plot.
    std::optional<std::size_t> CellAt(const ShapePoint& at) const;
    void Mark(const ShapePoint& at);
    void MarkLine(const std::vector<ShapePoint>& line);
    void MarkOutline(std::vector<ShapePoint> area);
    void MarkBox(const ChartBox& box);

    ChartBox m_plot;
    double m_cell;
    int m_columns, m_rows;
    std::vector<bool> m_marked;
};

}  // namespace qel
