#include "qellib10/graph/chart_legend.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "qellib10/graph/chart_hatch.h"
#include "qellib10/graph/chart_look.h"
#include "qellib10/graph/chart_marks.h"
#include "qellib10/graph/left_out.h"

namespace qel {
namespace {

constexpr double kSample = 22, kSampleGap = 5, kRowGap = 3, kBetween = 14, kPadding = 5;  // points
constexpr std::size_t kMostReasons = 4;

struct Line {
    std::optional<std::size_t> series;
    std::string text;
};

// The series with names in their order, but bars on each other from top to bottom, as they are seen.
std::vector<std::size_t> SeriesOf(const Chart& chart) {
    std::vector<std::size_t> order;
    std::map<std::pair<std::size_t, std::size_t>, std::vector<std::size_t>> stacks;  // by axes: places in the order
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        const ChartSeries& series = chart.series[i];
        if (series.name.empty() || !HasItsAxes(chart, series)) continue;
        const bool isOnOthers = series.kind == ChartKind::kBars && series.isStacked;
        if (isOnOthers && !chart.axes[series.yAxis].isReversed)
            stacks[{series.xAxis, series.yAxis}].push_back(order.size());
        order.push_back(i);
    }
    for (const auto& [axes, places] : stacks)
        for (std::size_t low = 0, high = places.size() - 1; low < high; ++low, --high)
            std::swap(order[places[low]], order[places[high]]);
    return order;
}

std::vector<Line> LinesOf(const Chart& chart) {
    std::vector<Line> lines;
    for (const std::size_t i : SeriesOf(chart)) lines.push_back({i, chart.series[i].name});
    const std::vector<LeftOutReason> reasons = ReasonsLeftOut(chart);
    const auto add = [&](const std::string& reason, std::size_t count) {
        lines.push_back(
            {{}, chart.leftOutText + (reason.empty() ? "" : ": ") + reason + " (" + std::to_string(count) + ")"});
    };
    std::size_t others = 0;
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        if (i < kMostReasons || reasons.size() == kMostReasons + 1) {
            add(reasons[i].reason, reasons[i].count);
        } else {
            others += reasons[i].count;
        }
    }
    if (others > 0) add("\u2026", others);
    return lines;
}

void DrawSample(const Chart& chart, ChartCanvas& canvas, std::size_t index, const ChartBox& sample) {
    const ChartTheme& theme = chart.theme;
    const ChartSeries& series = chart.series[index];
    const SeriesLook look = LookOf(chart, index);
    const double middle = (sample.top + sample.bottom) / 2;
    const bool isFilled = series.kind == ChartKind::kBars || series.kind == ChartKind::kBand;
    if (isFilled) {
        const double half = sample.Height() * 0.32;
        const double inset = sample.Width() * 0.15;
        const ChartBox box{sample.left + inset, middle - half, sample.right - inset, middle + half};
        canvas.Fill(box, look.color, series.kind == ChartKind::kBand ? 0.3 : 1);
        DrawHatch(canvas, box, look.hatch, theme.plot);
    } else if (series.kind != ChartKind::kPoints) {
        std::vector<double> dashes = look.dashes;
        for (double& length : dashes) length = canvas.Units(length);
        const std::array<ShapePoint, 2> ends = {{{sample.left, middle}, {sample.right, middle}}};
        canvas.Shape(ends, {.stroke = look.color, .strokeWidth = canvas.Units(look.width), .dashes = dashes});
    }
    DrawMark(canvas, look.mark, {(sample.left + sample.right) / 2, middle}, canvas.Units(theme.markSize), look.color,
             theme.plot, true);
}

}  // namespace

std::optional<LegendLayout> LayLegend(const Chart& chart, const ChartCanvas& canvas, double width, double longest) {
    const LabelStyle style{chart.theme.face, chart.theme.labelSize, chart.theme.text};
    const double sample = canvas.Units(kSample), padding = canvas.Units(kPadding);
    const double before = sample + canvas.Units(kSampleGap);
    LegendLayout legend;
    double x = padding, y = padding, row = 0;
    for (const Line& line : LinesOf(chart)) {
        const std::string text = canvas.Shortened(line.text, style, longest - before - 2 * padding);
        if (text.empty()) return {};
        const LabelSize size = canvas.Measure(text, style);
        const bool isNext = !legend.entries.empty() && (width <= 0 || x + before + size.width + padding > width);
        if (isNext) {
            x = padding;
            y += row + canvas.Units(kRowGap);
        }
        row = size.Height();
        const PlacedLabel label = LabelAt(canvas, text, style, {x + before, y}, {});
        legend.entries.push_back({line.series, label, {x, y, x + sample, y + row}});
        legend.box.right = std::max(legend.box.right, label.box.right + padding);
        x = label.box.right + canvas.Units(kBetween);
    }
    if (legend.entries.empty()) return {};
    legend.box.bottom = y + row + padding;
    return legend;
}

void MoveLegend(LegendLayout& legend, double dx, double dy) {
    const auto move = [&](ChartBox& box) { box = {box.left + dx, box.top + dy, box.right + dx, box.bottom + dy}; };
    move(legend.box);
    for (LegendLayout::Entry& entry : legend.entries) {
        move(entry.label.box);
        move(entry.sample);
        entry.label.start = {entry.label.start.x + dx, entry.label.start.y + dy};
    }
}

void DrawLegend(const Chart& chart, ChartCanvas& canvas, const LegendLayout& legend) {
    const ChartTheme& theme = chart.theme;
    if (legend.isInside) {
        canvas.Fill(legend.box, theme.plot, 0.88);
        const std::array<ShapePoint, 4> corners = {{{legend.box.left, legend.box.top},
                                                    {legend.box.right, legend.box.top},
                                                    {legend.box.right, legend.box.bottom},
                                                    {legend.box.left, legend.box.bottom}}};
        canvas.Shape(corners, {.stroke = theme.grid,
                               .strokeWidth = canvas.Units(theme.axisWidth),

                               .isClosed = true});
    }
    for (const LegendLayout::Entry& entry : legend.entries) {
        if (entry.series) {
            DrawSample(chart, canvas, *entry.series, entry.sample);
        } else {
            const ShapePoint middle{(entry.sample.left + entry.sample.right) / 2,
                                    (entry.sample.top + entry.sample.bottom) / 2};
            DrawLeftOut(chart, canvas, middle);
        }
        canvas.Label(entry.label.start, entry.label.text, entry.label.style);
    }
}

}  // namespace qel
