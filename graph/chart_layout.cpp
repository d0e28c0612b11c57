#include "qellib10/graph/chart_layout.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "qellib10/graph/category_names.h"
#include "qellib10/graph/chart_limit_lanes.h"
#include "qellib10/graph/left_out.h"

namespace qel {
namespace {

// Points: around titles, between the legend and the rest, and the smallest plot for whose sake texts are left out.
constexpr double kTitleGap = 4, kLegendGap = 8, kNarrowestPlot = 60, kLowestPlot = 45;
constexpr double kWidestLegend = 0.34;           // of the chart, beside the plot
constexpr double kNarrowestShare = 0.45;         // of the chart: the plot beside a legend
constexpr double kLongestName = 1.0 / 3;         // of the chart, across an axis
constexpr int kFreePasses = 2, kMostPasses = 8;  // values of axes need space, which changes the values

// What is left out first where there is no space.
enum class Left { kNothing, kLegend, kSubtitle, kAxisTitles, kTitle, kValues };

class ChartLayer {
public:
    ChartLayer(const ChartSnapshot& data, const ChartCanvas& canvas, const ChartBox& box, const ChartRanges& shown)
        : m_data(data), m_chart(data.chart), m_canvas(canvas), m_box(box), m_parts(PartsOfAxes(data, shown)) {}

    ChartLayout Lay() {
        for (const Left left :
             {Left::kNothing, Left::kLegend, Left::kSubtitle, Left::kAxisTitles, Left::kTitle, Left::kValues}) {
            const ChartLayout layout = LayWithout(left);
            if (IsLarge(layout) || left == Left::kValues) return Finished(layout, left);
        }
        return {};
    }

private:
    bool IsLarge(const ChartLayout& layout) const {
        return layout.plot.Width() >= m_canvas.Units(kNarrowestPlot) &&
               layout.plot.Height() >= m_canvas.Units(kLowestPlot);
    }

    static bool Has(Left left, Left part) { return left < part; }

    ChartLayout LayWithout(Left left) const {
        ChartLayout layout;
        layout.box = m_box;
        // The smallest charts have no margin to spare.
        const double margin =
            std::min(m_canvas.Units(m_chart.theme.margin), std::min(m_box.Width(), m_box.Height()) / 8);
        ChartBox inner{m_box.left + margin, m_box.top + margin, m_box.right - margin, m_box.bottom - margin};
        AddTitles(left, inner, layout);
        const AxisTexts texts{Has(left, Left::kValues), Has(left, Left::kAxisTitles), m_box.Width() * kLongestName,
                              m_box.Height() * kLongestName};
        LayPlot(inner, texts, layout);
        if (!m_chart.hasLegend || !Has(left, Left::kLegend)) return layout;
        if (auto inside = LegendInside(layout)) {
            layout.legend = std::move(inside);
            return layout;
        }
        LegendOutside(inner, texts, layout);
        return layout;
    }

    void AddTitle(const std::string& text, double points, bool isBold, COLORREF color, ChartBox& inner,
                  ChartLayout& layout) const {
        if (text.empty()) return;
        const LabelStyle style{m_chart.theme.face, points, color, isBold};
        const std::string shown = m_canvas.Shortened(text, style, inner.Width());
        if (shown.empty()) return;
        layout.titles.push_back(LabelAt(m_canvas, shown, style, {(inner.left + inner.right) / 2, inner.top}, {0.5, 0}));
        inner.top = layout.titles.back().box.bottom + m_canvas.Units(kTitleGap) / 2;
    }

    void AddTitles(Left left, ChartBox& inner, ChartLayout& layout) const {
        const ChartTheme& theme = m_chart.theme;
        if (Has(left, Left::kTitle)) AddTitle(m_chart.title, theme.titleSize, true, theme.text, inner, layout);
        if (Has(left, Left::kSubtitle))
            AddTitle(m_chart.subtitle, theme.subtitleSize, false, theme.faintText, inner, layout);
        if (!layout.titles.empty()) inner.top += m_canvas.Units(kTitleGap);
    }

    // The plot as large as its axes' texts leave it.
    void LayPlot(const ChartBox& all, const AxisTexts& texts, ChartLayout& layout) const {
        const ChartBox inner = layout.inner = m_lanes.Inside(all);
        ChartBox plot = inner;
        AxisSpaces most;
        for (int pass = 0; pass < kMostPasses; ++pass) {
            layout.plot = plot;
            layout.axes = LayAxes(m_chart, m_canvas, m_parts, plot, texts);
            const AxisSpaces spaces = SpacesOf(m_chart, m_canvas, layout.axes, plot);
            if (pass >= kFreePasses && spaces.left <= most.left && spaces.top <= most.top &&
                spaces.right <= most.right && spaces.bottom <= most.bottom)
                break;
            // Later passes only take more space: values that change with the space they leave would never settle.
            const bool isSettling = pass >= kFreePasses;
            const auto space = [&](double before, double now) { return isSettling ? std::max(before, now) : now; };
            most = {space(most.left, spaces.left), space(most.top, spaces.top), space(most.right, spaces.right),
                    space(most.bottom, spaces.bottom)};
            plot = {std::ceil(inner.left + most.left), std::ceil(inner.top + most.top),
                    std::floor(inner.right - most.right), std::floor(inner.bottom - most.bottom)};
            plot.right = std::max(plot.right, plot.left + 1);
            plot.bottom = std::max(plot.bottom, plot.top + 1);
        }
        // In the smallest charts the plot has its least size, whatever the axes need.
        layout.valuesLeftOut = 0;
        for (AxisLayout& axis : layout.axes)
            layout.valuesLeftOut +=
                std::erase_if(axis.labels, [&](const PlacedLabel& label) { return !IsInside(label.box, m_box); });
    }

    // In a corner of the plot that no curve passes through, or between two corners.
    std::optional<LegendLayout> LegendInside(const ChartLayout& layout) const {
        const double gap = m_canvas.Units(kLegendGap * 0.75);
        auto legend = LayLegend(m_chart, m_canvas, 0, layout.plot.Width() * 0.6);
        if (!legend) return {};
        const double width = legend->box.Width(), height = legend->box.Height();
        if (width > layout.plot.Width() * 0.6 || height > layout.plot.Height() * 0.6) return {};
        const CurveField field(m_data, m_canvas, layout.axes, layout.plot);
        const double left = layout.plot.left + gap, right = layout.plot.right - gap - width;
        const double top = layout.plot.top + gap, bottom = layout.plot.bottom - gap - height;
        const double across = (left + right) / 2, down = (top + bottom) / 2;
        const std::array<ShapePoint, 8> corners = {{{right, top},
                                                    {left, top},
                                                    {right, bottom},
                                                    {left, bottom},
                                                    {across, top},
                                                    {right, down},
                                                    {left, down},
                                                    {across, bottom}}};
        for (const bool isOnArea : {false, true}) {
            for (const ShapePoint& corner : corners) {
                const ChartBox box{corner.x, corner.y, corner.x + width, corner.y + height};
                if (field.Hits(box) > 0 || HasLimit(layout, box)) continue;
                if (!isOnArea && field.Filled(box) > 0) continue;
                MoveLegend(*legend, corner.x, corner.y);
                legend->isInside = true;
                return legend;
            }
        }
        return {};
    }

    bool HasLimit(const ChartLayout& layout, const ChartBox& box) const {
        return std::ranges::any_of(m_chart.limits, [&](const ChartLimit& limit) {
            if (limit.axis >= layout.axes.size()) return false;
            const bool isHorizontal = IsHorizontal(m_chart.axes[limit.axis]);
            const double low = isHorizontal ? box.left : box.top, high = isHorizontal ? box.right : box.bottom;
            const auto isWithin = [&](double at) { return at > low && at < high; };
            const AxisPlaces& places = layout.axes[limit.axis].places;
            return isWithin(places.At(limit.from)) || (limit.to && isWithin(places.At(*limit.to)));
        });
    }

    // At the right of the plot, or below everything where that would leave too little of the width.
    void LegendOutside(const ChartBox& inner, const AxisTexts& texts, ChartLayout& layout) const {
        const double gap = m_canvas.Units(kLegendGap), width = inner.Width();
        if (auto legend = LayLegend(m_chart, m_canvas, 0, width * kWidestLegend);
            legend && legend->box.Height() <= inner.Height() &&
            width * kWidestLegend > m_canvas.Units(kNarrowestPlot)) {
            ChartBox rest = inner;
            rest.right -= legend->box.Width() + gap;
            LayPlot(rest, texts, layout);
            MoveLegend(*legend, rest.right + gap, layout.plot.top);
            const bool isWide = layout.plot.Width() >= kNarrowestShare * m_box.Width();
            if (isWide && legend->box.bottom <= inner.bottom) {
                layout.legend = std::move(legend);
                return;
            }
        }
        auto legend = LayLegend(m_chart, m_canvas, width, width);
        if (!legend || legend->box.Height() > inner.Height() / 2) {
            LayPlot(inner, texts, layout);
            return;
        }
        ChartBox rest = inner;
        rest.bottom -= legend->box.Height() + gap;
        LayPlot(rest, texts, layout);
        MoveLegend(*legend, (inner.left + inner.right - legend->box.Width()) / 2, inner.bottom - legend->box.Height());
        layout.legend = std::move(legend);
    }

    std::size_t NamesLeftOut(const ChartLayout& layout) const {
        std::size_t count = 0;
        for (const AxisLayout& axis : layout.axes) {
            const ChartAxis& from = m_chart.axes[axis.index];
            if (from.scale == ChartScale::kCategories)
                count += NamesNotShown(from.categories, {axis.places.low, axis.places.high}, axis.ticks);
        }
        return count;
    }

    // With the texts over the plot, and beside it those that have no place there.
    ChartLayout Finished(ChartLayout layout, Left left) {
        if (m_chart.limits.empty() && m_chart.notes.empty()) return WithReport(std::move(layout), left);
        const std::vector<std::size_t> without = PlaceTexts(layout);
        m_lanes = LanesFor(m_chart, m_canvas, without, m_box);
        if (!m_lanes.IsEmpty()) {
            ChartLayout wider = LayWithout(left);
            if (IsLarge(wider)) {
                PlaceTexts(wider);
                layout = std::move(wider);
            }
        }
        return WithReport(std::move(layout), left);
    }

    // @return limits whose labels have no place over the plot
    std::vector<std::size_t> PlaceTexts(ChartLayout& layout) const {
        const CurveField field(m_data, m_canvas, layout.axes, layout.plot);
        TakenBoxes taken;
        if (layout.legend) taken.Take(layout.legend->box);
        std::vector<std::size_t> left = LimitsWithLabels(m_chart, layout.axes);
        const auto add = [&](const std::vector<LimitLabel>& labels) {
            layout.limitLabels.insert(layout.limitLabels.end(), labels.begin(), labels.end());
        };
        add(PlaceLimitLabels(m_chart, m_canvas, layout.axes, layout.plot, field, taken, left, false));
        const std::vector<std::size_t> without = left;
        add(PlaceInLanes(m_chart, m_canvas, layout.axes, layout.plot, layout.inner, m_lanes, left));
        add(PlaceLimitLabels(m_chart, m_canvas, layout.axes, layout.plot, field, taken, left, true));
        layout.notes = PlaceNotes(m_chart, m_canvas, layout.axes, layout.plot, field, taken);
        return without;
    }

    // What was wanted and is not there.
    ChartLayout WithReport(ChartLayout layout, Left left) const {
        const auto report = [&](bool isWanted, bool isThere, const std::string& name) {
            if (isWanted && !isThere) layout.leftOut.push_back(name);
        };
        const std::size_t titles = layout.titles.size();
        const bool hasTitle = !m_chart.title.empty();
        report(hasTitle, titles > 0 && Has(left, Left::kTitle), "title");
        report(!m_chart.subtitle.empty(), titles > (hasTitle ? 1U : 0U), "subtitle");
        report(true, Has(left, Left::kAxisTitles), "titles of the axes");
        report(true, Has(left, Left::kValues), "values of the axes");
        const bool hasNames = std::ranges::any_of(m_chart.series, [](const ChartSeries& s) { return !s.name.empty(); });
        const bool hasEntries = hasNames || !ReasonsLeftOut(m_chart).empty();
        report(m_chart.hasLegend && hasEntries, layout.legend.has_value(), "legend");
        for (std::size_t i = AxisCount(m_chart); i < m_chart.axes.size(); ++i)
            layout.leftOut.push_back("axis: " + m_chart.axes[i].title);
        for (std::size_t i = 0; i < m_parts.size(); ++i)
            for (const ChartBreak& each : BreaksWithoutEffect(m_chart, i, m_parts[i]))
                layout.leftOut.push_back("break: " + TextOf(each));
        for (const ChartSeries& series : m_chart.series)
            if (!HasItsAxes(m_chart, series)) layout.leftOut.push_back("series: " + series.name);
        const auto reportCount = [&](std::size_t count, const char* one, const char* more, const char* rest) {
            if (count > 0) layout.leftOut.push_back(std::to_string(count) + ' ' + (count == 1 ? one : more) + rest);
        };
        for (const AxisLayout& axis : layout.axes) {
            const std::string& title = m_chart.axes[axis.index].title;
            if (Has(left, Left::kAxisTitles) && !axis.title && !title.empty())
                layout.leftOut.push_back("title of an axis: " + title);
        }
        reportCount(layout.valuesLeftOut, "value", "values", " of the axes");
        reportCount(Has(left, Left::kValues) ? NamesLeftOut(layout) : 0, "name", "names", " of categories");
        reportCount(ValuesNotAboveZero(m_data), "value", "values", " not above 0");
        for (std::size_t i = 0; i < m_chart.limits.size(); ++i) {
            const ChartLimit& limit = m_chart.limits[i];
            const bool isPlaced =
                std::ranges::find(layout.limitLabels, i, &LimitLabel::limit) != layout.limitLabels.end();
            // Also a line without a label that its axis does not show.
            const bool isShown = limit.axis < layout.axes.size() && SpanOf(limit, layout.axes[limit.axis].places);
            report(!limit.label.empty() || !isShown, isPlaced,
                   "limit: " + (limit.label.empty() ? NumberText(limit.from, 0, 0) : limit.label));
        }
        for (std::size_t i = 0; i < m_chart.notes.size(); ++i) {
            const bool isPlaced = std::ranges::find(layout.notes, i, &PlacedNote::index) != layout.notes.end();
            report(true, isPlaced, "note: " + m_chart.notes[i].text);
        }
        return layout;
    }

    const ChartSnapshot& m_data;
    const Chart& m_chart;
    const ChartCanvas& m_canvas;
    const ChartBox m_box;
    const std::vector<AxisParts> m_parts;
    LimitLanes m_lanes;  // of labels without a place over the plot
};

}  // namespace

ChartLayout LayChart(const ChartSnapshot& data, const ChartCanvas& canvas, const ChartBox& box,
                     const ChartRanges& shown) {
    return ChartLayer(data, canvas, box, shown).Lay();
}

}  // namespace qel
