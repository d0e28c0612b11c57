#include "qellib10/graph/chart_axis_layout.h"

#include <algorithm>
#include <array>

#include "qellib10/graph/category_names.h"
#include "qellib10/graph/chart_look.h"
#include "qellib10/graph/linear_ticks.h"
#include "qellib10/graph/unit_prefix.h"

namespace qel {
namespace {

// Points between a tick and its value, values and title, values along the axis, and axes of one side.
constexpr double kValueGap = 3, kTitleGap = 3, kBetweenAcross = 20, kBetweenDown = 14, kBetweenAxes = 7;
constexpr double kBreakGap = 6;  // points

class AxisLayer {
public:
    AxisLayer(const Chart& chart, const ChartCanvas& canvas, const ChartBox& plot, const AxisTexts& texts)
        : m_chart(chart), m_canvas(canvas), m_plot(plot), m_texts(texts) {}

    AxisLayout Lay(std::size_t index, const AxisParts& parts) {
        const ChartAxis& axis = m_chart.axes[index];
        AxisLayout layout;
        layout.index = index;
        layout.places = Places(axis, parts);
        layout.ticks = TicksOf(axis, layout.places, layout.isTurned);
        double& used = m_used[static_cast<std::size_t>(axis.side)];
        if (used > 0) used += m_canvas.Units(kBetweenAxes);
        layout.line = Outward(axis.side, used);
        used += m_canvas.Units(m_chart.theme.tick);
        if (m_texts.hasValues) AddValues(axis, used, layout);
        if (m_texts.hasTitles) AddTitle(axis, used, layout);
        return layout;
    }

private:
    AxisPlaces Places(const ChartAxis& axis, const AxisParts& parts) const {
        const bool isHorizontal = IsHorizontal(axis);
        double from = isHorizontal ? m_plot.left : m_plot.bottom, to = isHorizontal ? m_plot.right : m_plot.top;
        if (axis.isReversed) std::swap(from, to);
        return PlacesOf(parts, axis.scale == ChartScale::kLogarithmic, from, to, m_canvas.Units(kBreakGap));
    }

    LabelStyle ValueStyle(COLORREF color) const { return {m_chart.theme.face, m_chart.theme.labelSize, color}; }

    AxisTicks TicksOf(const ChartAxis& axis, const AxisPlaces& range, bool& isTurned) const {
        const bool isHorizontal = IsHorizontal(axis);
        AxisSpace space;
        space.length = std::max(1.0, isHorizontal ? m_plot.Width() : m_plot.Height());
        space.shortestMinor = m_canvas.Units(3);
        space.extent = [this, isHorizontal, style = ValueStyle(m_chart.theme.faintText)](std::string_view text) {
            const LabelSize size = m_canvas.Measure(text, style);
            return isHorizontal ? size.width + m_canvas.Units(kBetweenAcross)
                                : size.Height() + m_canvas.Units(kBetweenDown);
        };
        if (!range.parts.empty()) {
            return axis.scale == ChartScale::kTime ? TimeTicksAt(TickPlaces(range), axis.clock, space)
                                                   : LinearTicksAt(TickPlaces(range), ExponentOf(axis), space);
        }
        switch (axis.scale) {
            case ChartScale::kLogarithmic:
                return LogTicks(range.low, range.high, space);
            case ChartScale::kTime:
                return TimeTicks(range.low, range.high, axis.clock, space);
            case ChartScale::kCategories: {
                const NameSpace names{space, isHorizontal, isHorizontal ? m_texts.highestName : m_texts.widestName};
                CategoryNames found = FitCategoryNames(axis.categories, {range.low, range.high}, m_canvas,
                                                       ValueStyle(m_chart.theme.faintText), names);
                isTurned = found.isTurned;
                return std::move(found.ticks);
            }
            default:
                return LinearTicks(range.low, range.high, ExponentOf(axis), space);
        }
    }

    // The coordinate at a distance from the plot.
    double Outward(ChartSide side, double distance) const {
        switch (side) {
            case ChartSide::kLeft:
                return m_plot.left - distance;
            case ChartSide::kTop:
                return m_plot.top - distance;
            case ChartSide::kRight:
                return m_plot.right + distance;
            default:
                return m_plot.bottom + distance;
        }
    }

    // Texts outside the plot: the anchor is the edge of their box towards it.
    static LabelAnchor AnchorOf(ChartSide side) {
        switch (side) {
            case ChartSide::kLeft:
                return {1, 0.5};
            case ChartSide::kTop:
                return {0.5, 1};
            case ChartSide::kRight:
                return {0, 0.5};
            default:
                return {0.5, 0};
        }
    }

    PlacedLabel Beside(const ChartAxis& axis, double along, double outward, std::string text,
                       const LabelStyle& style) const {
        const double across = Outward(axis.side, outward);
        const ShapePoint at = IsHorizontal(axis) ? ShapePoint{along, across} : ShapePoint{across, along};
        return LabelAt(m_canvas, std::move(text), style, at, AnchorOf(axis.side));
    }

    static double Thickness(const ChartAxis& axis, const PlacedLabel& label) {
        return IsHorizontal(axis) ? label.box.Height() : label.box.Width();
    }

    void AddValues(const ChartAxis& axis, double& used, AxisLayout& layout) const {
        double thickness = 0;
        const double at = used + m_canvas.Units(kValueGap);
        LabelStyle style = ValueStyle(SeriesColorOf(m_chart, layout.index).value_or(m_chart.theme.faintText));
        style.quarterTurns = layout.isTurned ? 1 : 0;
        for (const AxisTick& tick : layout.ticks.ticks) {
            if (tick.text.empty()) continue;
            layout.labels.push_back(Beside(axis, layout.places.At(tick.value), at, tick.text, style));
            thickness = std::max(thickness, Thickness(axis, layout.labels.back()));
        }
        if (thickness > 0) used = at + thickness;
    }

    // "Volume (mL)", "Potential (10³ mV)".
    static std::string TitleOf(const ChartAxis& axis, const AxisTicks& ticks) {
        // A prefix is part of the unit; beyond the prefixes there is a power.
        const bool isPrefix = ExponentOf(axis) == ChartExponent::kSiPrefix && axis.scale == ChartScale::kLinear &&
                              !ticks.factor.starts_with("×");
        const std::string between = isPrefix || ticks.factor.empty() || axis.unit.empty() ? "" : " ";
        const std::string inside = ticks.factor + between + axis.unit;
        if (inside.empty()) return axis.title;
        return axis.title.empty() ? inside : axis.title + " (" + inside + ")";
    }

    void AddTitle(const ChartAxis& axis, double& used, AxisLayout& layout) const {
        LabelStyle style{m_chart.theme.face, m_chart.theme.axisTitleSize,
                         SeriesColorOf(m_chart, layout.index).value_or(m_chart.theme.text)};
        style.quarterTurns = IsHorizontal(axis) ? 0 : 1;
        const double length = IsHorizontal(axis) ? m_plot.Width() : m_plot.Height();
        const std::string text = m_canvas.Shortened(TitleOf(axis, layout.ticks), style, length);
        if (text.empty()) return;
        const double middle = IsHorizontal(axis) ? (m_plot.left + m_plot.right) / 2 : (m_plot.top + m_plot.bottom) / 2;
        const double at = used + m_canvas.Units(kTitleGap);
        layout.title = Beside(axis, middle, at, text, style);
        used = at + Thickness(axis, *layout.title);
    }

    const Chart& m_chart;
    const ChartCanvas& m_canvas;
    const ChartBox m_plot;
    const AxisTexts m_texts;
    std::array<double, 4> m_used{};  // of each side, outward from the plot
};

}  // namespace

ChartExponent ExponentOf(const ChartAxis& axis) {
    const bool isPower = axis.exponent == ChartExponent::kSiPrefix && !TakesPrefix(axis.unit);
    return isPower ? ChartExponent::kPower : axis.exponent;
}

std::vector<AxisLayout> LayAxes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisParts>& parts,
                                const ChartBox& plot, const AxisTexts& texts) {
    AxisLayer layer(chart, canvas, plot, texts);
    std::vector<AxisLayout> axes;
    for (std::size_t i = 0; i < parts.size(); ++i) axes.push_back(layer.Lay(i, parts[i]));
    return axes;
}

AxisSpaces SpacesOf(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                    const ChartBox& plot) {
    AxisSpaces spaces;
    const auto include = [&](const ChartBox& box) {
        spaces.left = std::max(spaces.left, plot.left - box.left);
        spaces.top = std::max(spaces.top, plot.top - box.top);
        spaces.right = std::max(spaces.right, box.right - plot.right);
        spaces.bottom = std::max(spaces.bottom, box.bottom - plot.bottom);
    };
    const double tick = canvas.Units(chart.theme.tick);
    for (const AxisLayout& axis : axes) {
        const ChartAxis& from = chart.axes[axis.index];
        if (IsHorizontal(from)) {
            include({plot.left, axis.line - tick, plot.right, axis.line + tick});
        } else {
            include({axis.line - tick, plot.top, axis.line + tick, plot.bottom});
        }
        for (const PlacedLabel& label : axis.labels) include(label.box);
        if (axis.title) include(axis.title->box);
    }
    return spaces;
}

}  // namespace qel
