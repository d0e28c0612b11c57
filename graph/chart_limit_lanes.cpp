#include "qellib10/graph/chart_limit_lanes.h"

#include <algorithm>
#include <cmath>

namespace qel {
namespace {

constexpr double kGap = 4, kBetween = 2;  // points, to the plot and between labels
constexpr double kWidest = 0.25;          // of the box

bool HasAxisAt(const Chart& chart, ChartSide side) {
    return std::ranges::any_of(std::span(chart.axes).first(AxisCount(chart)),
                               [&](const ChartAxis& axis) { return axis.side == side; });
}

ChartSide SideOf(const Chart& chart, const ChartLimit& limit) {
    const bool isUpright = IsHorizontal(chart.axes[limit.axis]);
    const ChartSide first = isUpright ? ChartSide::kTop : ChartSide::kRight;
    const ChartSide other = isUpright ? ChartSide::kBottom : ChartSide::kLeft;
    return HasAxisAt(chart, first) && !HasAxisAt(chart, other) ? other : first;
}

// A label of one lane, along it.
struct InLane {
    std::size_t limit;
    double wanted;  // its middle
    std::string text;
    double size;
    double at = 0;  // the middle that it has
};

// As near as possible to where they are wanted, in their order, without overlaps.
// @return false if they do not fit
bool Spread(std::vector<InLane>& labels, double low, double high, double between) {
    std::ranges::stable_sort(labels, {}, &InLane::wanted);
    // Labels that touch each other are one block, whose middle is where its labels want it on the average.
    struct Block {
        std::size_t first, count;
        double start, size;
    };
    std::vector<Block> blocks;
    const auto start = [&](const Block& block) {
        double sum = 0, before = 0;
        for (std::size_t i = block.first; i < block.first + block.count; ++i) {
            sum += labels[i].wanted - before - labels[i].size / 2;
            before += labels[i].size + between;
        }
        return std::max(low, std::min(sum / static_cast<double>(block.count), high - block.size));
    };
    for (std::size_t i = 0; i < labels.size(); ++i) {
        Block block{i, 1, 0, labels[i].size};
        block.start = start(block);
        while (!blocks.empty() && blocks.back().start + blocks.back().size + between > block.start) {
            block = {blocks.back().first, blocks.back().count + block.count, 0,
                     blocks.back().size + between + block.size};
            block.start = start(block);
            blocks.pop_back();
        }
        blocks.push_back(block);
    }
    for (const Block& block : blocks) {
        double at = block.start;
        for (std::size_t i = block.first; i < block.first + block.count; ++i) {
            labels[i].at = at + labels[i].size / 2;
            at += labels[i].size + between;
        }
    }
    return blocks.empty() || blocks.back().start + blocks.back().size <= high + 1e-6;
}

}  // namespace

LimitLanes LanesFor(const Chart& chart, const ChartCanvas& canvas, const std::vector<std::size_t>& limits,
                    const ChartBox& box) {
    LimitLanes lanes;
    for (const std::size_t i : limits) {
        const ChartLimit& limit = chart.limits[i];
        const LabelSize size = canvas.Measure(limit.label, StyleOf(limit, chart.theme));
        const double gap = canvas.Units(kGap), width = std::min(size.width + gap, kWidest * box.Width());
        const double height = size.Height() + gap;
        switch (SideOf(chart, limit)) {
            case ChartSide::kLeft:
                lanes.left = std::max(lanes.left, width);
                break;
            case ChartSide::kRight:
                lanes.right = std::max(lanes.right, width);
                break;
            case ChartSide::kTop:
                lanes.top = std::max(lanes.top, height);
                break;
            default:
                lanes.bottom = std::max(lanes.bottom, height);
        }
    }
    return lanes;
}

std::vector<LimitLabel> PlaceInLanes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                                     const ChartBox& plot, const ChartBox& inner, const LimitLanes& lanes,
                                     std::vector<std::size_t>& limits) {
    std::vector<LimitLabel> placed;
    const double gap = canvas.Units(kGap), between = canvas.Units(kBetween);
    for (const ChartSide side : {ChartSide::kLeft, ChartSide::kRight, ChartSide::kTop, ChartSide::kBottom}) {
        const bool isAbove = side == ChartSide::kTop || side == ChartSide::kBottom;
        const bool isBefore = side == ChartSide::kLeft || side == ChartSide::kTop;
        const double lane = side == ChartSide::kLeft    ? lanes.left
                            : side == ChartSide::kRight ? lanes.right
                            : side == ChartSide::kTop   ? lanes.top
                                                        : lanes.bottom;
        const double low = isAbove ? inner.left : inner.top, high = isAbove ? inner.right : inner.bottom;
        std::vector<InLane> labels;
        for (const std::size_t i : limits)
            if (lane > 0 && SideOf(chart, chart.limits[i]) == side) labels.push_back({i, 0, {}, 0});
        double longest = isAbove ? high - low : lane - gap;
        for (bool isDone = labels.empty(); !isDone;) {
            for (InLane& label : labels) {
                const ChartLimit& limit = chart.limits[label.limit];
                const LabelStyle style = StyleOf(limit, chart.theme);
                const auto span = SpanOf(limit, axes[limit.axis].places);
                label.wanted = span ? (span->low + span->high) / 2 : low;
                label.text = canvas.Shortened(limit.label, style, longest);
                const LabelSize size = canvas.Measure(label.text, style);
                label.size = isAbove ? size.width : size.Height();
            }
            std::erase_if(labels, [](const InLane& label) { return label.text.empty(); });
            isDone = labels.empty() || Spread(labels, low, high, between);
            if (isDone) break;
            // Above and below, all are shortened to the same share; still too many are left out.
            const double share = (high - low) / static_cast<double>(labels.size()) - between;
            if (isAbove && share < longest && share > 0) {
                longest = share;
            } else {
                labels.pop_back();
            }
        }
        const bool hasAxis = HasAxisAt(chart, side);
        for (const InLane& label : labels) {
            const double edge = side == ChartSide::kLeft    ? inner.left - gap
                                : side == ChartSide::kRight ? inner.right + gap
                                : side == ChartSide::kTop   ? inner.top - gap
                                                            : inner.bottom + gap;
            const double end = side == ChartSide::kLeft    ? plot.left
                               : side == ChartSide::kRight ? plot.right
                               : side == ChartSide::kTop   ? plot.top
                                                           : plot.bottom;
            const auto at = [&](double along, double across) {
                return isAbove ? ShapePoint{along, across} : ShapePoint{across, along};
            };
            const double anchor = isBefore ? 1 : 0;
            const LabelAnchor anchors = isAbove ? LabelAnchor{0.5, anchor} : LabelAnchor{anchor, 0.5};
            LimitLabel found{label.limit,
                             LabelAt(canvas, label.text, StyleOf(chart.limits[label.limit], chart.theme),
                                     at(label.at, edge), anchors),
                             true};
            // Beyond an axis it would cross its values.
            if (!hasAxis && std::fabs(label.at - label.wanted) > label.size / 2)
                found.leader = {at(label.wanted, end), at(label.at, edge + (isBefore ? 1 : -1) * gap / 4)};
            placed.push_back(std::move(found));
        }
    }
    std::erase_if(limits,
                  [&](std::size_t i) { return std::ranges::find(placed, i, &LimitLabel::limit) != placed.end(); });
    return placed;
}

}  // namespace qel
