#include "qellib10/graph/chart_frame.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "qellib10/graph/chart_cells.h"
#include "qellib10/graph/chart_look.h"

namespace qel {
namespace {

constexpr double kLimitOpacity = 0.10;
constexpr double kStrokeAlong = 1.6, kStrokeAcross = 4.5;  // points: half of a stroke at a break, along the axis
constexpr double kCutSlant = 2, kCutReach = 1.5;           // points: of a stroke across a bar

}  // namespace

// The plot between the breaks of the first axis of the other direction: what runs across is cut there.
std::vector<ChartBox> ChartFrame::Pieces(const AxisLayout& axis) const {
    const bool isHorizontal = IsHorizontal(m_chart.axes[axis.index]);
    for (const AxisLayout& other : m_layout.axes) {
        if (IsHorizontal(m_chart.axes[other.index]) == isHorizontal) continue;
        std::vector<ChartBox> pieces;
        for (const PlotStripe& stripe : StripesOf(m_layout.plot, other.places, !isHorizontal))
            pieces.push_back(stripe.box);
        return pieces;
    }
    return {m_layout.plot};
}

// From edge to edge of the plot at a place of the axis.
void ChartFrame::Across(const AxisLayout& axis, double place, COLORREF color, double width,
                        std::span<const double> dashes) {
    for (const ChartBox& piece : Pieces(axis)) {
        if (IsHorizontal(m_chart.axes[axis.index])) {
            m_canvas.Straight({place, piece.top}, {place, piece.bottom}, color, width, dashes);
        } else {
            m_canvas.Straight({piece.left, place}, {piece.right, place}, color, width, dashes);
        }
    }
}

bool ChartFrame::HasGrid(const AxisLayout& axis) const {
    const ChartAxis& own = m_chart.axes[axis.index];
    if (own.hasGrid) return *own.hasGrid;
    const auto first = std::ranges::find_if(
        m_chart.axes, [&](const ChartAxis& other) { return IsHorizontal(other) == IsHorizontal(own); });
    return &*first == &own && own.scale != ChartScale::kCategories;
}

void ChartFrame::PaintGrid() {
    for (const AxisLayout& axis : m_layout.axes) {
        if (!HasGrid(axis)) continue;
        for (const AxisTick& tick : axis.ticks.ticks)
            if (!tick.isMinor) Across(axis, axis.places.At(tick.value), m_theme.grid, m_theme.gridWidth);
    }
}

void ChartFrame::PaintAxes() {
    for (const AxisLayout& axis : m_layout.axes) PaintAxis(axis);
}

void ChartFrame::PaintAxis(const AxisLayout& axis) {
    const ChartSide side = m_chart.axes[axis.index].side;
    const bool isHorizontal = IsHorizontal(m_chart.axes[axis.index]);
    const COLORREF color = SeriesColorOf(m_chart, axis.index).value_or(m_theme.axis);
    const double out = side == ChartSide::kBottom || side == ChartSide::kRight ? 1 : -1;
    const auto at = [&](double along, double across) {
        return isHorizontal ? ShapePoint{along, across} : ShapePoint{across, along};
    };
    for (const auto& [box, part] : StripesOf(m_layout.plot, axis.places, isHorizontal)) {
        const double from = isHorizontal ? box.left : box.top, to = isHorizontal ? box.right : box.bottom;
        m_canvas.Straight(at(from, axis.line), at(to, axis.line), color, m_theme.axisWidth);
    }
    for (const AxisTick& tick : axis.ticks.ticks) {
        const double length = out * m_canvas.Units(m_theme.tick) * (tick.isMinor ? 0.6 : 1);
        const double along = axis.places.At(tick.value);
        m_canvas.Straight(at(along, axis.line), at(along, axis.line + length), color, m_theme.axisWidth);
    }
    const double along = m_canvas.Units(kStrokeAlong), across = m_canvas.Units(kStrokeAcross);
    const auto stroke = [&](double edge) {
        const std::array ends = {at(edge - along, axis.line + across), at(edge + along, axis.line - across)};
        m_canvas.Shape(ends, {.stroke = color, .strokeWidth = std::max(1.0, m_canvas.Units(m_theme.axisWidth))});
    };
    for (std::size_t i = 1; i < axis.places.parts.size(); ++i) {
        stroke(axis.places.parts[i - 1].to);
        stroke(axis.places.parts[i].from);
    }
    for (const PlacedLabel& label : axis.labels) m_canvas.Label(label.start, label.text, label.style);
    if (axis.title) m_canvas.Label(axis.title->start, axis.title->text, axis.title->style);
}

void ChartFrame::PaintCut(double left, double right, double edge) {
    const double slant = m_canvas.Units(kCutSlant), reach = m_canvas.Units(kCutReach);
    const std::array<ShapePoint, 2> ends = {{{left - reach, edge + slant}, {right + reach, edge - slant}}};
    m_canvas.Shape(ends, {.stroke = m_theme.axis, .strokeWidth = std::max(1.0, m_canvas.Units(m_theme.axisWidth))});
}

COLORREF ChartFrame::ColorOf(const ChartLimit& limit) const {
    return Readable(limit.color.value_or(m_theme.limit), m_theme.plot, m_theme.text, kLineContrast);
}

void ChartFrame::PaintBands(const ChartBox& box) {
    for (const ChartLimit& limit : m_chart.limits) PaintBand(limit, box);
}

void ChartFrame::PaintBand(const ChartLimit& limit, const ChartBox& box) {
    if (limit.axis >= m_layout.axes.size() || !limit.to) return;
    const AxisLayout& axis = m_layout.axes[limit.axis];
    const bool isHorizontal = IsHorizontal(m_chart.axes[limit.axis]);
    for (const PlotStripe& stripe : StripesOf(m_layout.plot, axis.places, isHorizontal)) {
        double from = stripe.part.At(limit.from), to = stripe.part.At(*limit.to);
        if (!std::isfinite(from) || !std::isfinite(to)) return;
        if (from > to) std::swap(from, to);
        for (const ChartBox& piece : Pieces(axis)) {
            ChartBox band = Common(box, Common(stripe.box, piece));
            if (isHorizontal) {
                band.left = std::max(band.left, from);
                band.right = std::min(band.right, to);
            } else {
                band.top = std::max(band.top, from);
                band.bottom = std::min(band.bottom, to);
            }
            if (band.left < band.right && band.top < band.bottom) m_canvas.Fill(band, ColorOf(limit), kLimitOpacity);
        }
    }
}

void ChartFrame::PaintLimits() {
    for (const ChartLimit& limit : m_chart.limits) PaintLimit(limit);
}

void ChartFrame::PaintLeader(const LimitLabel& label) {
    if (!label.leader) return;
    const COLORREF color = ColorOf(m_chart.limits[label.limit]);
    m_canvas.Shape(*label.leader, {.stroke = color, .strokeWidth = std::max(1.0, m_canvas.Units(0.7))});
}

void ChartFrame::PaintLimit(const ChartLimit& limit) {
    if (limit.axis >= m_layout.axes.size()) return;
    const AxisLayout& axis = m_layout.axes[limit.axis];
    const std::vector<double> dashes = m_canvas.Lengths(std::array{4.0, 2.5});
    for (const std::optional<double>& end : {std::optional(limit.from), limit.to}) {
        const double place = end ? axis.places.At(*end) : NAN;
        const double low = std::min(axis.places.from, axis.places.to);
        const double high = std::max(axis.places.from, axis.places.to);
        if (place >= low && place <= high) Across(axis, place, ColorOf(limit), 1, dashes);
    }
}

}  // namespace qel
