#include "qellib10/graph/chart_look.h"

#include <algorithm>
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

constexpr ChartMark kMarks[] = {ChartMark::kCircle,       ChartMark::kSquare, ChartMark::kTriangle, ChartMark::kDiamond,
                                ChartMark::kTriangleDown, ChartMark::kCross,  ChartMark::kPlus,     ChartMark::kStar,
                                ChartMark::kPentagon,     ChartMark::kHexagon};

}  // namespace

SeriesLook LookOf(const Chart& chart, std::size_t index) {
    const ChartSeries& series = chart.series[index];
    const ChartTheme& theme = chart.theme;
    const std::size_t colors = theme.palette.size();
    SeriesLook look;
    look.color = series.color.value_or(colors > 0 ? theme.palette[index % colors] : theme.text);
    look.width = series.width > 0 ? series.width : theme.lineWidth;
    const auto isLine = [](const ChartSeries& each) {
        return each.kind == ChartKind::kLine || each.kind == ChartKind::kSteps || each.kind == ChartKind::kArea;
    };
    const auto lines = std::ranges::count_if(std::span(chart.series).first(index), isLine);
    const std::size_t round =
        theme.hasDashes ? static_cast<std::size_t>(lines) : index / std::max<std::size_t>(1, colors);
    const std::size_t dash =
        series.dash == ChartDash::kAuto ? round % kDashCount : static_cast<std::size_t>(series.dash) - 1;
    for (const double length : kDashes[std::min(dash, kDashCount - 1)].lengths)
        look.dashes.push_back(length * std::max(1.0, look.width));
    look.mark = series.mark;
    if (look.mark == ChartMark::kAuto)
        look.mark = series.kind == ChartKind::kPoints ? kMarks[index % std::size(kMarks)] : ChartMark::kNone;
    return look;
}

}  // namespace qel
