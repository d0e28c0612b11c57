#include "qellib10/graph/chart_look.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

namespace qel {
namespace {

struct DashLengths {
    ChartDash dash;
    std::vector<double> lengths;  // of a line one point wide
};
const DashLengths kDashes[] = {{ChartDash::kSolid, {}},
                               {ChartDash::kDash, {4.5, 2.5}},
                               {ChartDash::kDot, {1.2, 2.2}},
                               {ChartDash::kDashDot, {5, 2, 1.2, 2}},
                               {ChartDash::kLongDash, {9, 3}}};
constexpr std::size_t kDashCount = std::size(kDashes);

constexpr ChartMark kMarks[] = {ChartMark::kCircle,  ChartMark::kSquare,       ChartMark::kTriangle,
                                ChartMark::kDiamond, ChartMark::kTriangleDown, ChartMark::kCross,
                                ChartMark::kPlus,    ChartMark::kStar,         ChartMark::kPentagon,
                                ChartMark::kHexagon, ChartMark::kOpenCircle,   ChartMark::kOpenSquare};
constexpr double kBetweenMarks = 60;

// Of the three channels' linear light, as WCAG 2.1 (2018) defines relative luminance.
double LuminanceOf(COLORREF color) {
    const auto light = [](int channel) {
        const double share = channel / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * light(GetRValue(color)) + 0.7152 * light(GetGValue(color)) + 0.0722 * light(GetBValue(color));
}

double ContrastOf(COLORREF one, COLORREF other) {
    const auto [dark, light] = std::minmax({LuminanceOf(one), LuminanceOf(other)});
    return (light + 0.05) / (dark + 0.05);
}

// The series whose colour this one has.
std::size_t SourceOf(const Chart& chart, std::size_t index) {
    const auto& from = chart.series[index].colorOf;
    return from && *from < chart.series.size() ? *from : index;
}

// Among those that have a colour of their own, so that no colour of the palette is skipped.
std::size_t PlaceInPalette(const Chart& chart, std::size_t source) {
    const auto isOwn = [](const ChartSeries& series) { return !series.colorOf; };
    return static_cast<std::size_t>(std::ranges::count_if(std::span(chart.series).first(source), isOwn));
}

// Goes on by one with each round of the colours, so that no two have the same number and colour before all pairs are
// used up.
std::size_t NextWithColors(std::size_t count, std::size_t colors) {
    return colors > 0 ? count % colors + count / colors : count;
}

COLORREF ColorOf(const Chart& chart, std::size_t index) {
    const std::size_t source = SourceOf(chart, index), colors = chart.theme.palette.size();
    const COLORREF own = colors > 0 ? chart.theme.palette[PlaceInPalette(chart, source) % colors] : chart.theme.text;
    return chart.series[index].color.value_or(chart.series[source].color.value_or(own));
}

}  // namespace

COLORREF Readable(COLORREF color, COLORREF on, COLORREF text, double contrast) {
    constexpr int kSteps = 16;
    COLORREF mixed = color;
    for (int step = 1; step <= kSteps && ContrastOf(mixed, on) < contrast; ++step) {
        const auto mix = [step](int from, int to) { return from + (to - from) * step / kSteps; };
        mixed = RGB(mix(GetRValue(color), GetRValue(text)), mix(GetGValue(color), GetGValue(text)),
                    mix(GetBValue(color), GetBValue(text)));
    }
    return mixed;
}

std::optional<COLORREF> SeriesColorOf(const Chart& chart, std::size_t axis) {
    if (!chart.axes[axis].hasSeriesColor) return {};
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        if (chart.series[i].xAxis == axis || chart.series[i].yAxis == axis)
            return Readable(ColorOf(chart, i), chart.theme.background, chart.theme.text, kTextContrast);
    }
    return {};
}

SeriesLook LookOf(const Chart& chart, std::size_t index) {
    const ChartSeries& series = chart.series[index];
    const ChartTheme& theme = chart.theme;
    SeriesLook look;
    look.color = ColorOf(chart, index);
    look.width = series.width > 0 ? series.width : theme.lineWidth;
    const auto isLine = [](const ChartSeries& each) {
        return each.kind == ChartKind::kLine || each.kind == ChartKind::kSteps || each.kind == ChartKind::kArea;
    };
    const auto isPoints = [](const ChartSeries& each) { return each.kind == ChartKind::kPoints; };
    const std::span before = std::span(chart.series).first(index);
    const auto count = [&](const auto& isCounted) {
        return static_cast<std::size_t>(std::ranges::count_if(before, isCounted));
    };
    const std::size_t lines = count(isLine), points = count(isPoints), colors = theme.palette.size();
    const std::size_t round = theme.hasDashes
                                  ? NextWithColors(lines, colors)
                                  : PlaceInPalette(chart, SourceOf(chart, index)) / std::max<std::size_t>(1, colors);
    const std::size_t dash =
        series.dash == ChartDash::kAuto ? round % kDashCount : static_cast<std::size_t>(series.dash) - 1;
    for (const double length : kDashes[std::min(dash, kDashCount - 1)].lengths)
        look.dashes.push_back(length * std::max(1.0, look.width));
    const auto isBars = [](const ChartSeries& each) { return each.kind == ChartKind::kBars; };
    if (theme.hasDashes && isBars(series)) look.hatch = NextWithColors(count(isBars), colors);
    look.mark = series.mark;
    if (look.mark != ChartMark::kAuto) return look;
    look.mark = isPoints(series) ? kMarks[points % std::size(kMarks)] : ChartMark::kNone;
    // Without colours, lines of the second round would have the dashes of the first.
    if (theme.hasDashes && isLine(series) && lines >= kDashCount) {
        look.mark = kMarks[(lines / kDashCount - 1) % std::size(kMarks)];
        look.markDistance = kBetweenMarks;
    }
    return look;
}

}  // namespace qel
