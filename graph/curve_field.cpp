#include "qellib10/graph/curve_field.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "qellib10/graph/chart_cells.h"
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
      m_marked(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows)),
      m_filled(m_marked.size()) {
    const Chart& chart = data.chart;
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        if (!HasItsAxes(chart, chart.series[i])) continue;
        const ChartSeries& series = chart.series[i];
        const std::vector<ChartCell> cells = CellsOf(plot, axes[series.xAxis].places, axes[series.yAxis].places);
        for (const ChartCell& cell : cells) {
            if (!(cell.box == plot)) m_area = cell.box;
            MarkSeries(series, SeriesCurves(data, i, cell.x, cell.y), cell.box);
            m_area.reset();
        }
    }
    for (const ChartNote& note : chart.notes) {
        if (!note.isFlag || !HasItsAxes(chart, note.xAxis, note.yAxis)) continue;
        const ShapePoint at{axes[note.xAxis].places.At(note.x), axes[note.yAxis].places.At(note.y)};
        MarkLine(CutToArea(std::array{at, ShapePoint{at.x, axes[note.xAxis].line}}, plot));
        MarkLine(CutToArea(std::array{at, ShapePoint{axes[note.yAxis].line, at.y}}, plot));
    }
}

void CurveField::MarkSeries(const ChartSeries& series, const SeriesCurves& curves, const ChartBox& area) {
    if (series.kind == ChartKind::kBars) {
        for (const ChartBox& bar : curves.Bars()) MarkBox(bar);
    } else if (series.kind == ChartKind::kPoints) {
        for (std::size_t point = 0; point < curves.Count(); ++point) Mark(curves.At(point));
    } else if (series.kind != ChartKind::kBand) {
        MarkLine(CutToArea(curves.RoughLine(1 / m_cell), area));
    }
    // Of an area the line is marked already, and its other edge is an axis.
    if (series.kind == ChartKind::kArea)
        for (const std::vector<ShapePoint>& outline : curves.Areas(1 / m_cell)) Fill(outline);
    std::vector<std::vector<ShapePoint>> bands;
    if (series.kind == ChartKind::kBand) bands = curves.Areas(1 / m_cell);
    if (series.hasErrorBand) std::ranges::move(curves.ErrorAreas(1 / m_cell), std::back_inserter(bands));
    for (const std::vector<ShapePoint>& outline : bands) {
        Fill(outline);
        MarkOutline(outline, area);
    }
    for (const ShapePoint& at : curves.LeftOut()) Mark(at);
    for (const SeriesCurves::ErrorBar& bar : curves.ErrorBars()) MarkLine({bar.from, bar.to});
}

std::optional<std::size_t> CurveField::CellAt(const ShapePoint& at) const {
    const double column = std::floor((at.x - m_plot.left) / m_cell), row = std::floor((at.y - m_plot.top) / m_cell);
    if (!(column >= 0 && column < m_columns && row >= 0 && row < m_rows)) return {};
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
}

void CurveField::Mark(const ShapePoint& at) {
    if (m_area && !IsInside({at.x, at.y, at.x, at.y}, *m_area)) return;
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

void CurveField::MarkOutline(std::vector<ShapePoint> outline, const ChartBox& area) {
    outline.push_back(outline.front());
    MarkLine(CutToArea(std::move(outline), area));
}

void CurveField::MarkBox(const ChartBox& box) {
    const double left = std::max(box.left, m_plot.left), right = std::min(box.right, m_plot.right);
    const double top = std::max(box.top, m_plot.top), bottom = std::min(box.bottom, m_plot.bottom);
    for (double y = top; y < bottom + m_cell; y += m_cell) {
        const double row = std::min(y, bottom);
        for (double x = left; x < right + m_cell; x += m_cell) Mark({std::min(x, right), row});
    }
}

void CurveField::Fill(const std::vector<ShapePoint>& outline) {
    const auto rowAt = [&](double y) { return std::clamp((y - m_plot.top) / m_cell - 0.5, -1.0, double(m_rows)); };
    const auto middle = [&](int row) { return m_plot.top + (row + 0.5) * m_cell; };
    std::vector<std::vector<double>> crossings(static_cast<std::size_t>(m_rows));
    for (std::size_t i = 0; i < outline.size(); ++i) {
        ShapePoint upper = outline[i], lower = outline[(i + 1) % outline.size()];
        if (upper.y > lower.y) std::swap(upper, lower);
        for (int row = static_cast<int>(std::ceil(rowAt(upper.y))); row < std::ceil(rowAt(lower.y)); ++row) {
            if (row < 0) continue;
            const double share = (middle(row) - upper.y) / (lower.y - upper.y);
            crossings[static_cast<std::size_t>(row)].push_back(upper.x + share * (lower.x - upper.x));
        }
    }
    for (int row = 0; row < m_rows; ++row) {
        std::vector<double>& across = crossings[static_cast<std::size_t>(row)];
        std::erase_if(across, [](double x) { return std::isnan(x); });
        std::ranges::sort(across);
        for (std::size_t i = 1; i < across.size(); i += 2) {
            const auto columnAt = [&](double x) {
                return static_cast<int>(
                    std::ceil(std::clamp((x - m_plot.left) / m_cell - 0.5, 0.0, double(m_columns))));
            };
            for (int column = columnAt(across[i - 1]); column < columnAt(across[i]); ++column) {
                const ShapePoint at{m_plot.left + (column + 0.5) * m_cell, middle(row)};
                if (m_area && !IsInside({at.x, at.y, at.x, at.y}, *m_area)) continue;
                m_filled[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
                         static_cast<std::size_t>(column)] = true;
            }
        }
    }
}

int CurveField::Hits(const ChartBox& box) const {
    return CountIn(box, [&](std::size_t cell) { return m_marked[cell]; });
}

int CurveField::Filled(const ChartBox& box) const {
    return CountIn(box, [&](std::size_t cell) { return m_filled[cell] && !m_marked[cell]; });
}

template <class Counts> int CurveField::CountIn(const ChartBox& box, const Counts& counts) const {
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
            hits += counts(at) ? 1 : 0;
        }
    }
    return hits;
}

}  // namespace qel
