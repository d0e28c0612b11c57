#include "qellib10/graph/chart_painter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

#include "qellib10/graph/chart_cells.h"
#include "qellib10/graph/chart_frame.h"
#include "qellib10/graph/chart_hatch.h"
#include "qellib10/graph/chart_line.h"
#include "qellib10/graph/chart_look.h"
#include "qellib10/graph/chart_marks.h"

namespace qel {
namespace {

constexpr double kAreaOpacity = 0.25, kGapOfMark = 0.5;
constexpr double kAroundText = 1.5, kBackOfText = 0.8;
constexpr double kCap = 3;  // points: half of the line at the end of an error bar

class ChartPainter {
public:
    ChartPainter(const ChartSnapshot& data, ChartCanvas& canvas, const ChartLayout& layout)
        : m_data(data),
          m_chart(data.chart),
          m_theme(m_chart.theme),
          m_canvas(canvas),
          m_layout(layout),
          m_frame(m_chart, canvas, layout),
          m_marksOfLines(m_chart.series.size()) {}

    void Paint() {
        m_canvas.Fill(m_layout.box, m_theme.background);
        m_canvas.Fill(m_layout.plot, m_theme.plot);
        ClipTo(m_layout.plot);
        m_frame.PaintBands(m_layout.plot);
        m_frame.PaintGrid();
        ForEachSeries(0, [&](std::size_t i, const SeriesCurves& curves) { PaintAreas(i, curves); });
        ForEachSeries(0, [&](std::size_t i, const SeriesCurves& curves) { PaintBars(i, curves); });
        ClipTo(m_layout.plot);
        for (const Cut& cut : m_cuts) m_frame.PaintCut(cut.left, cut.right, cut.edge);
        m_frame.PaintLimits();
        ForEachSeries(0, [&](std::size_t i, const SeriesCurves& curves) { PaintLine(i, curves); });
        EndClip();
        m_frame.PaintAxes();
        // Whole marks at the edges too.
        const double mark = m_canvas.Units(m_theme.markSize);
        ForEachSeries(mark, [&](std::size_t i, const SeriesCurves& curves) { PaintMarks(i, curves); });
        EndClip();
        for (const PlacedNote& note : m_layout.notes) PaintNote(note);
        for (const LimitLabel& label : m_layout.limitLabels) {
            label.isOutside ? PaintLabel(label.label) : PaintOnPlot(label.label);
            m_frame.PaintLeader(label);
        }
        if (m_layout.legend) DrawLegend(m_chart, m_canvas, *m_layout.legend);
        for (const PlacedLabel& title : m_layout.titles) PaintLabel(title);
    }

private:
    // At the end of a bar in a cell.
    struct Cut {
        double left, right, edge;
    };

    // The step in each cell of the plot in turn, with @p reach around it.
    template <class Step> void ForEachSeries(double reach, const Step& step) {
        for (std::size_t i = 0; i < m_chart.series.size(); ++i) {
            const ChartSeries& series = m_chart.series[i];
            if (!HasItsAxes(m_chart, series)) continue;
            const std::vector<AxisLayout>& axes = m_layout.axes;
            for (const ChartCell& cell : CellsOf(m_layout.plot, axes[series.xAxis].places, axes[series.yAxis].places)) {
                m_area = cell.box;
                ClipTo(Grown(cell.box, reach));
                step(i, SeriesCurves(m_data, i, cell.x, cell.y));
            }
        }
    }

    void ClipTo(const ChartBox& box) {
        if (m_clip == box) return;
        EndClip();
        m_canvas.Clip(box);
        m_clip = box;
    }
    void EndClip() {
        if (m_clip) m_canvas.EndClip();
        m_clip.reset();
    }

    void PaintLabel(const PlacedLabel& label) { m_canvas.Label(label.start, label.text, label.style); }

    // With a background, so that it can be read on a curve.
    void PaintOnPlot(const PlacedLabel& label) {
        const ChartBox back = Grown(label.box, m_canvas.Units(kAroundText));
        m_canvas.Fill(back, m_theme.plot, kBackOfText);
        m_frame.PaintBands(back);
        PaintLabel(label);
    }

    void PaintAreas(std::size_t index, const SeriesCurves& curves) {
        const ChartSeries& series = m_chart.series[index];
        const ShapeStyle style{
            .fill = LookOf(m_chart, index).color, .isSmooth = m_chart.isSmooth, .opacity = kAreaOpacity};
        ShapeStyle lone = style;
        lone.fill = {};
        lone.stroke = LookOf(m_chart, index).color;
        lone.strokeWidth = m_canvas.Units(m_theme.markSize);
        const auto paint = [&](const std::vector<std::vector<ShapePoint>>& areas) {
            for (const std::vector<ShapePoint>& area : areas)
                m_canvas.Shape(Near(area), area.size() > 2 ? style : lone);
        };
        if (series.kind == ChartKind::kArea || series.kind == ChartKind::kBand) paint(curves.Areas());
        if (series.hasErrorBand) paint(curves.ErrorAreas());
    }

    // Corners of filled areas that are far outside are moved nearer, which the clip hides.
    std::vector<ShapePoint> Near(std::vector<ShapePoint> area) const {
        const double reach = 1e5;
        for (ShapePoint& corner : area)
            corner = {std::clamp(corner.x, m_area.left - reach, m_area.right + reach),
                      std::clamp(corner.y, m_area.top - reach, m_area.bottom + reach)};
        return area;
    }

    void PaintBars(std::size_t index, const SeriesCurves& curves) {
        if (m_chart.series[index].kind != ChartKind::kBars) return;
        const SeriesLook look = LookOf(m_chart, index);
        for (const ChartBox& bar : curves.Bars()) {
            AddCuts(bar);
            ChartBox shown = bar;
            shown.top = std::max(shown.top, m_area.top - 1);
            shown.bottom = std::min(shown.bottom, m_area.bottom + 1);
            shown.left = std::max(shown.left, m_area.left - 1);
            shown.right = std::min(shown.right, m_area.right + 1);
            if (!(shown.top < shown.bottom && shown.left < shown.right)) continue;
            m_canvas.Fill(shown, look.color);
            DrawHatch(m_canvas, shown, look.hatch, m_theme.plot);
            // Neighbours may have the same grey on paper.
            if (m_theme.hasDashes) Outline(shown);
        }
    }

    // Where it goes on after a break.
    void AddCuts(const ChartBox& bar) {
        if (!(bar.left < m_area.right && bar.right > m_area.left && bar.top < m_area.bottom && bar.bottom > m_area.top))
            return;
        if (bar.top < m_area.top && m_area.top > m_layout.plot.top) m_cuts.push_back({bar.left, bar.right, m_area.top});
        if (bar.bottom > m_area.bottom && m_area.bottom < m_layout.plot.bottom)
            m_cuts.push_back({bar.left, bar.right, m_area.bottom});
    }

    void Outline(const ChartBox& box) {
        const std::array<ShapePoint, 4> corners = {
            {{box.left, box.top}, {box.right, box.top}, {box.right, box.bottom}, {box.left, box.bottom}}};
        m_canvas.Shape(corners,
                       {.stroke = m_theme.text, .strokeWidth = m_canvas.Units(m_theme.gridWidth), .isClosed = true});
    }

    void PaintLine(std::size_t index, const SeriesCurves& curves) {
        const ChartSeries& series = m_chart.series[index];
        const SeriesLook look = LookOf(m_chart, index);
        const double width = m_canvas.Units(look.width);
        ShapeStyle style{.stroke = look.color,
                         .strokeWidth = m_chart.isSmooth ? width : std::max(1.0, std::round(width)),

                         .isSmooth = m_chart.isSmooth};
        const auto stroke = [&](auto&& line) {
            m_canvas.Shape(CutToArea(std::forward<decltype(line)>(line), m_area), style);
        };
        if (series.hasDrops) {
            style.strokeWidth = std::max(1.0, width / 2);
            for (std::size_t i = 0; i < curves.Count(); ++i) {
                const ShapePoint at = curves.At(i);
                const bool isDrop = std::isfinite(at.x) && std::isfinite(at.y) && curves.Counts(i);
                if (isDrop) stroke(std::array{ShapePoint{at.x, curves.Base()}, at});
            }
            style.strokeWidth = width;
        }
        const bool hasLine =
            series.kind == ChartKind::kLine || series.kind == ChartKind::kSteps || series.kind == ChartKind::kArea;
        if (hasLine) {
            const std::vector<double> dashes = m_canvas.Lengths(look.dashes);
            style.dashes = dashes;
            style.isRound = dashes.empty();
            // Dashes start at the edge.
            std::vector<ShapePoint> line = curves.Line(style.isRound ? width / 2 + 1 : 0);
            const std::vector<ShapePoint> marks =
                look.markDistance > 0 ? PlacesAlong(line, m_canvas.Units(look.markDistance)) : LonePlaces(line);
            // Outside of the cell a line has places that are not on the axes there.
            std::ranges::copy_if(marks, std::back_inserter(m_marksOfLines[index]), [&](const ShapePoint& at) {
                return IsInside({at.x, at.y, at.x, at.y}, Grown(m_area, kGapOfMark));
            });
            stroke(std::move(line));
        }
    }

    void PaintMarks(std::size_t index, const SeriesCurves& curves) {
        const SeriesLook look = LookOf(m_chart, index);
        const double width = std::max(1.0, m_canvas.Units(look.width) * 0.7), cap = m_canvas.Units(kCap);
        const bool isOnBars = m_chart.series[index].kind == ChartKind::kBars;  // whose colour would hide them
        const ShapeStyle style{
            .stroke = isOnBars ? m_theme.text : look.color, .strokeWidth = width, .isSmooth = m_chart.isSmooth};
        const double nan = std::nan("");
        for (const SeriesCurves::ErrorBar& bar : curves.ErrorBars()) {
            const ShapePoint side = bar.isVertical ? ShapePoint{cap, 0} : ShapePoint{0, cap};
            const std::array<ShapePoint, 8> corners = {{{bar.from.x - side.x, bar.from.y - side.y},
                                                        {bar.from.x + side.x, bar.from.y + side.y},
                                                        {nan, nan},
                                                        bar.from,
                                                        bar.to,
                                                        {nan, nan},
                                                        {bar.to.x - side.x, bar.to.y - side.y},
                                                        {bar.to.x + side.x, bar.to.y + side.y}}};
            m_canvas.Shape(CutToArea(corners, m_area), style);
        }
        const ChartBox reach = Grown(m_area, kGapOfMark);
        for (const ShapePoint& at : curves.LeftOut())
            if (IsInside({at.x, at.y, at.x, at.y}, reach)) DrawLeftOut(m_chart, m_canvas, at);
        const double size = m_canvas.Units(m_theme.markSize);
        const auto mark = [&](ChartMark kind, const ShapePoint& at) {
            if (IsInside({at.x, at.y, at.x, at.y}, reach))
                DrawMark(m_canvas, kind, at, size, look.color, m_theme.plot, m_chart.isSmooth);
        };
        if (look.mark == ChartMark::kNone || look.markDistance > 0) {
            const ChartMark kind = look.mark == ChartMark::kNone ? ChartMark::kCircle : look.mark;
            for (const ShapePoint& at : m_marksOfLines[index]) mark(kind, at);
            return;
        }
        for (std::size_t i = 0; i < curves.Count(); ++i)
            if (curves.Counts(i)) mark(look.mark, curves.At(i));
    }

    void PaintNote(const PlacedNote& placed) {
        const ChartNote& note = m_chart.notes[placed.index];
        const ChartBox& box = placed.label.box;
        if (note.isFlag) PaintFlag(note, placed.at);
        // From the nearest place of the text's box to the point, with an arrow's head there.
        const ShapePoint from{std::clamp(placed.at.x, box.left, box.right),
                              std::clamp(placed.at.y, box.top, box.bottom)};
        const double dx = placed.at.x - from.x, dy = placed.at.y - from.y, length = std::hypot(dx, dy);
        const double head = m_canvas.Units(5), rest = m_canvas.Units(note.isFlag ? m_theme.markSize * 0.8 : 2);
        if (length > head + rest) {
            const double ux = dx / length, uy = dy / length;
            const ShapePoint tip{placed.at.x - ux * rest, placed.at.y - uy * rest};
            const ShapePoint neck{tip.x - ux * head, tip.y - uy * head};
            const std::array<ShapePoint, 2> shaft = {from, neck};
            m_canvas.Shape(shaft, {.stroke = m_theme.text, .strokeWidth = m_canvas.Units(0.8)});
            const double half = head * 0.36;
            const std::array<ShapePoint, 3> triangle = {
                {tip, {neck.x - uy * half, neck.y + ux * half}, {neck.x + uy * half, neck.y - ux * half}}};
            m_canvas.Shape(triangle, {.fill = m_theme.text});
        }
        PaintOnPlot(placed.label);
    }

    // To the edges of the plot at the axes: beyond them are the values of others.
    void PaintFlag(const ChartNote& note, const ShapePoint& at) {
        const ChartBox& plot = m_layout.plot;
        const double down = m_chart.axes[note.xAxis].side == ChartSide::kTop ? plot.top : plot.bottom;
        const double across = m_chart.axes[note.yAxis].side == ChartSide::kRight ? plot.right : plot.left;
        const std::vector<double> dashes = m_canvas.Lengths(std::array{2.0, 2.0});
        const AxisPlaces &x = m_layout.axes[note.xAxis].places, &y = m_layout.axes[note.yAxis].places;
        for (const AxisWay& way : WithoutGaps(y, {at.y, down}))
            m_canvas.Straight({at.x, way.from}, {at.x, way.to}, m_theme.faintText, 0.7, dashes);
        for (const AxisWay& way : WithoutGaps(x, {across, at.x}))
            m_canvas.Straight({way.from, at.y}, {way.to, at.y}, m_theme.faintText, 0.7, dashes);
        DrawMark(m_canvas, ChartMark::kOpenCircle, at, m_canvas.Units(m_theme.markSize * 1.2), m_theme.text,
                 m_theme.plot, m_chart.isSmooth);
    }

    const ChartSnapshot& m_data;
    const Chart& m_chart;
    const ChartTheme& m_theme;
    ChartCanvas& m_canvas;
    const ChartLayout& m_layout;
    ChartFrame m_frame;
    ChartBox m_area;  // of the cell that is drawn
    std::optional<ChartBox> m_clip;
    std::vector<Cut> m_cuts;
    std::vector<std::vector<ShapePoint>> m_marksOfLines;  // of each series: lone points, or marks along the line
};

}  // namespace

void PaintChart(const ChartSnapshot& data, ChartCanvas& canvas, const ChartLayout& layout) {
    ChartPainter(data, canvas, layout).Paint();
}

}  // namespace qel
