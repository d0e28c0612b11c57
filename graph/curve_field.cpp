#include "qellib10/graph/curve_field.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "qellib10/graph/chart_line.h"

namespace qel {
namespace {

constexpr double kCell = 4;  // points
constexpr int kMostCells = 1000;

int CellsOf(double length, double cell) {
    return std::clamp(static_cast<int>(std::ceil(length / cell)), 1, kMostCells);
}

}  // namespace

CurveField::CurveField(const ChartSnapshot& data, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                       const ChartBox& plot)
    : m_plot(plot),
      m_cell(std::max({canvas.Units(kCell), plot.Width() / kMostCells, plot.Height() / kMostCells})),
      m_columns(CellsOf(plot.Width(), m_cell)),
      m_rows(CellsOf(plot.Height(), m_cell)),
      m_marked(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows)) {
    const Chart& chart = data.chart;
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        if (!HasItsAxes(chart, chart.series[i])) continue;
        const SeriesCurves curves(data, i, axes);
        const ChartKind kind = chart.series[i].kind;
        if (kind == ChartKind::kBars) {
            for (const ChartBox& bar : curves.Bars()) MarkBox(bar);
        } else if (kind == ChartKind::kPoints) {
            for (std::size_t point = 0; point < curves.Count(); ++point) Mark(curves.At(point));
        } else if (kind == ChartKind::kBand) {
            for (const std::vector<ShapePoint>& area : curves.Areas()) MarkOutline(area);
        } else {
            MarkLine(CutToArea(curves.RoughLine(1 / m_cell), plot));
        }
        if (chart.series[i].hasErrorBand)
            for (const std::vector<ShapePoint>& area : curves.ErrorAreas()) MarkOutline(area);
        for (const ShapePoint& at : curves.LeftOut()) Mark(at);
        for (const SeriesCurves::ErrorBar& bar : curves.ErrorBars()) MarkLine({bar.from, bar.to});
    }
    for (const ChartNote& note : chart.notes) {
        if (!note.isFlag || !HasItsAxes(chart, note.xAxis, note.yAxis)) continue;
        const ShapePoint at{axes[note.xAxis].places.At(note.x), axes[note.yAxis].places.At(note.y)};
        MarkLine(CutToArea(std::array{at, ShapePoint{at.x, axes[note.xAxis].line}}, plot));
        MarkLine(CutToArea(std::array{at, ShapePoint{axes[note.yAxis].line, at.y}}, plot));
    }
}

std::optional<std::size_t> CurveField::CellAt(const ShapePoint& at) const {
    const double column = std::floor((at.x - m_plot.left) / m_cell), row = std::floor((at.y - m_plot.top) / m_cell);
    if (!(column >= 0 && column < m_columns && row >= 0 && row < m_rows)) return {};
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
}

void CurveField::Mark(const ShapePoint& at) {
    if (const auto cell = CellAt(at)) m_marked[*cell] = true;
}

int CurveField::HitsAlong(const ShapePoint& from, const ShapePoint& to) const {
    const double dx = to.x - from.x, dy = to.y - from.y;
    const int steps = static_cast<int>(std::min(std::hypot(dx, dy) / m_cell, 1e4));
    int hits = 0;
    for (int step = 0; step <= steps; ++step) {
        const double share = steps == 0 ? 0 : double(step) / steps;
        const auto cell = CellAt({from.x + dx * share, from.y + dy * share});
        hits += cell && m_marked[*cell] ? 1 : 0;
    }
    return hits;
}

void CurveField::MarkLine(const std::vector<ShapePoint>& line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        Mark(line[i]);
        if (i == 0) continue;
        const double dx = line[i].x - line[i - 1].x, dy = line[i].y - line[i - 1].y;
        const double steps = std::ceil(2 * std::max(std::fabs(dx), std::fabs(dy)) / m_cell);
        if (!(steps < 1e5)) continue;  // also where there is a gap
        for (double step = 1; step < steps; ++step)
            Mark({line[i - 1].x + dx * step / steps, line[i - 1].y + dy * step / steps});
    }
}

void CurveField::MarkOutline(std::vector<ShapePoint> area) {
    area.push_back(area.front());
    MarkLine(CutToArea(std::move(area), m_plot));
}

void CurveField::MarkBox(const ChartBox& box) {
    const double left = std::max(box.left, m_plot.left), right = std::min(box.right, m_plot.right);
    const double top = std::max(box.top, m_plot.top), bottom = std::min(box.bottom, m_plot.bottom);
    for (double y = top; y < bottom + m_cell; y += m_cell) {
        const double row = std::min(y, bottom);
        for (double x = left; x < right + m_cell; x += m_cell) Mark({std::min(x, right), row});
    }
}

int CurveField::Hits(const ChartBox& box) const {
    const auto cell = [&](double place, double start, int count) {
        return std::clamp(static_cast<int>(std::clamp((place - start) / m_cell, -1.0, 1e6)), 0, count - 1);
    };
    const int left = cell(box.left, m_plot.left, m_columns), right = cell(box.right, m_plot.left, m_columns);
    const int top = cell(box.top, m_plot.top, m_rows), bottom = cell(box.bottom, m_plot.top, m_rows);
    int hits = 0;
    for (int row = top; row <= bottom; ++row) {
        for (int column = left; column <= right; ++column) {
            const auto at =
                static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
            hits += m_marked[at] ? 1 : 0;
        }
    }
    return hits;
}

}  // namespace qel
