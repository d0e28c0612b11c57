#include "qellib10/graph/chart_painter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "qellib10/graph/chart_hatch.h"
#include "qellib10/graph/chart_line.h"
#include "qellib10/graph/chart_look.h"
#include "qellib10/graph/chart_marks.h"

namespace qel {
namespace {

constexpr double kAreaOpacity = 0.25, kLimitOpacity = 0.10, kGapOfMark = 0.5;
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
          m_marksOfLines(m_chart.series.size()) {}

    void Paint() {
        m_canvas.Fill(m_layout.box, m_theme.background);
        m_canvas.Fill(m_layout.plot, m_theme.plot);
        m_canvas.Clip(m_layout.plot);
        for (const ChartLimit& limit : m_chart.limits) PaintBand(limit, m_layout.plot);
        for (const AxisLayout& axis : m_layout.axes) PaintGrid(axis);
        ForEachSeries([&](std::size_t i, const SeriesCurves& curves) { PaintAreas(i, curves); });
        ForEachSeries([&](std::size_t i, const SeriesCurves& curves) { PaintBars(i, curves); });
        for (const ChartLimit& limit : m_chart.limits) PaintLimit(limit);
        ForEachSeries([&](std::size_t i, const SeriesCurves& curves) { PaintLine(i, curves); });
        m_canvas.EndClip();
        for (const AxisLayout& axis : m_layout.axes) PaintAxis(axis);
        // Whole marks at the edges too.
        m_canvas.Clip(Grown(m_layout.plot, m_canvas.Units(m_theme.markSize)));
        ForEachSeries([&](std::size_t i, const SeriesCurves& curves) { PaintMarks(i, curves); });
        m_canvas.EndClip();
        for (const PlacedNote& note : m_layout.notes) PaintNote(note);
        for (const PlacedNote& label : m_layout.limitLabels) PaintOnPlot(label.label);
        if (m_layout.legend) DrawLegend(m_chart, m_canvas, *m_layout.legend);
        for (const PlacedLabel& title : m_layout.titles) PaintLabel(title);
    }

private:
    static ChartBox Grown(const ChartBox& box, double by) {
        return {box.left - by, box.top - by, box.right + by, box.bottom + by};
    }

    template <class Step> void ForEachSeries(const Step& step) {
        for (std::size_t i = 0; i < m_chart.series.size(); ++i)
            if (HasItsAxes(m_chart, m_chart.series[i])) step(i, SeriesCurves(m_data, i, m_layout.axes));
    }

    void PaintLabel(const PlacedLabel& label) { m_canvas.Label(label.start, label.text, label.style); }

    // With a background, so that it can be read on a curve.
    void PaintOnPlot(const PlacedLabel& label) {
        const ChartBox back = Grown(label.box, m_canvas.Units(kAroundText));
        m_canvas.Fill(back, m_theme.plot, kBackOfText);
        for (const ChartLimit& limit : m_chart.limits) PaintBand(limit, back);
        PaintLabel(label);
    }

    std::vector<double> Lengths(std::vector<double> points) const {
        for (double& length : points) length = m_canvas.Units(length);
        return points;
    }

    // From edge to edge of the plot at a place of the axis.
    void Across(const AxisLayout& axis, double place, COLORREF color, double width,
                std::span<const double> dashes = {}) {
        const ChartBox& plot = m_layout.plot;
        if (IsHorizontal(m_chart.axes[axis.index])) {
            m_canvas.Straight({place, plot.top}, {place, plot.bottom}, color, width, dashes);
        } else {
            m_canvas.Straight({plot.left, place}, {plot.right, place}, color, width, dashes);
        }
    }

    bool HasGrid(const AxisLayout& axis) const {
        const ChartAxis& own = m_chart.axes[axis.index];
        if (own.hasGrid) return *own.hasGrid;
        const auto first = std::ranges::find_if(
            m_chart.axes, [&](const ChartAxis& other) { return IsHorizontal(other) == IsHorizontal(own); });
        return &*first == &own && own.scale != ChartScale::kCategories;
    }

    void PaintGrid(const AxisLayout& axis) {
        if (!HasGrid(axis)) return;
        for (const AxisTick& tick : axis.ticks.ticks)
            if (!tick.isMinor) Across(axis, axis.places.At(tick.value), m_theme.grid, m_theme.gridWidth);
    }

    void PaintAxis(const AxisLayout& axis) {
        const ChartBox& plot = m_layout.plot;
        const ChartSide side = m_chart.axes[axis.index].side;
        const bool isHorizontal = IsHorizontal(m_chart.axes[axis.index]);
        const COLORREF color = SeriesColorOf(m_chart, axis.index).value_or(m_theme.axis);
        const double out = side == ChartSide::kBottom || side == ChartSide::kRight ? 1 : -1;
        if (isHorizontal) {
            m_canvas.Straight({plot.left, axis.line}, {plot.right, axis.line}, color, m_theme.axisWidth);
        } else {
            m_canvas.Straight({axis.line, plot.top}, {axis.line, plot.bottom}, color, m_theme.axisWidth);
        }
        for (const AxisTick& tick : axis.ticks.ticks) {
            const double length = out * m_canvas.Units(m_theme.tick) * (tick.isMinor ? 0.6 : 1);
            const double at = axis.places.At(tick.value);
            if (isHorizontal) {
                m_canvas.Straight({at, axis.line}, {at, axis.line + length}, color, m_theme.axisWidth);
            } else {
                m_canvas.Straight({axis.line, at}, {axis.line + length, at}, color, m_theme.axisWidth);
            }
        }
        for (const PlacedLabel& label : axis.labels) PaintLabel(label);
        if (axis.title) PaintLabel(*axis.title);
    }

    COLORREF ColorOf(const ChartLimit& limit) const {
        return Readable(limit.color.value_or(m_theme.limit), m_theme.plot, m_theme.text, kLineContrast);
    }

    void PaintBand(const ChartLimit& limit, ChartBox box) {
        if (limit.axis >= m_layout.axes.size() || !limit.to) return;
        const AxisPlaces& places = m_layout.axes[limit.axis].places;
        double from = places.At(limit.from), to = places.At(*limit.to);
        if (!std::isfinite(from) || !std::isfinite(to)) return;
        if (from > to) std::swap(from, to);
        if (IsHorizontal(m_chart.axes[limit.axis])) {
            box.left = std::max(box.left, from);
            box.right = std::min(box.right, to);
        } else {
            box.top = std::max(box.top, from);
            box.bottom = std::min(box.bottom, to);
        }
        if (box.left < box.right && box.top < box.bottom) m_canvas.Fill(box, ColorOf(limit), kLimitOpacity);
    }

    void PaintLimit(const ChartLimit& limit) {
        if (limit.axis >= m_layout.axes.size()) return;
        const AxisLayout& axis = m_layout.axes[limit.axis];
        const std::vector<double> dashes = Lengths({4, 2.5});
        for (const std::optional<double>& end : {std::optional(limit.from), limit.to}) {
            const double place = end ? axis.places.At(*end) : NAN;
            const double low = std::min(axis.places.from, axis.places.to);
            const double high = std::max(axis.places.from, axis.places.to);
            if (place >= low && place <= high) Across(axis, place, ColorOf(limit), 1, dashes);
        }
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
            corner = {std::clamp(corner.x, m_layout.plot.left - reach, m_layout.plot.right + reach),
                      std::clamp(corner.y, m_layout.plot.top - reach, m_layout.plot.bottom + reach)};
        return area;
    }

    void PaintBars(std::size_t index, const SeriesCurves& curves) {
        if (m_chart.series[index].kind != ChartKind::kBars) return;
        const SeriesLook look = LookOf(m_chart, index);
        for (const ChartBox& bar : curves.Bars()) {
            ChartBox shown = bar;
            shown.top = std::max(shown.top, m_layout.plot.top - 1);
            shown.bottom = std::min(shown.bottom, m_layout.plot.bottom + 1);
            shown.left = std::max(shown.left, m_layout.plot.left - 1);
            shown.right = std::min(shown.right, m_layout.plot.right + 1);
            if (!(shown.top < shown.bottom && shown.left < shown.right)) continue;
            m_canvas.Fill(shown, look.color);
            DrawHatch(m_canvas, shown, look.hatch, m_theme.plot);
            // Neighbours may have the same grey on paper.
            if (m_theme.hasDashes) Outline(shown);
        }
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
            m_canvas.Shape(CutToArea(std::forward<decltype(line)>(line), m_layout.plot), style);
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
            const std::vector<double> dashes = Lengths(look.dashes);
            style.dashes = dashes;
            style.isRound = dashes.empty();
            // Dashes start at the edge.
            std::vector<ShapePoint> line = curves.Line(style.isRound ? width / 2 + 1 : 0);
            const std::vector<ShapePoint> marks =
                look.markDistance > 0 ? PlacesAlong(line, m_canvas.Units(look.markDistance)) : LonePlaces(line);
            m_marksOfLines[index].insert(m_marksOfLines[index].end(), marks.begin(), marks.end());
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
            m_canvas.Shape(CutToArea(corners, m_layout.plot), style);
        }
        const ChartBox reach = Grown(m_layout.plot, kGapOfMark);
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
        const std::vector<double> dashes = Lengths({2, 2});
        m_canvas.Straight(at, {at.x, down}, m_theme.faintText, 0.7, dashes);
        m_canvas.Straight({across, at.y}, at, m_theme.faintText, 0.7, dashes);
        DrawMark(m_canvas, ChartMark::kOpenCircle, at, m_canvas.Units(m_theme.markSize * 1.2), m_theme.text,
                 m_theme.plot, m_chart.isSmooth);
    }

    const ChartSnapshot& m_data;
    const Chart& m_chart;
    const ChartTheme& m_theme;
    ChartCanvas& m_canvas;
    const ChartLayout& m_layout;
    std::vector<std::vector<ShapePoint>> m_marksOfLines;  // of each series: lone points, or marks along the line
};

}  // namespace

void PaintChart(const ChartSnapshot& data, ChartCanvas& canvas, const ChartLayout& layout) {
    ChartPainter(data, canvas, layout).Paint();
}

}  // namespace qel
