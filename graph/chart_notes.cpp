#include "qellib10/graph/chart_notes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "qellib10/graph/chart_look.h"

namespace qel {
namespace {

constexpr double kGap = 3, kAtTarget = 10;  // points, around a text, and of an arrow at the curve

ChartBox Grown(const ChartBox& box, double by) {
    return {box.left - by, box.top - by, box.right + by, box.bottom + by};
}

// Whether a part of it is between the ends of its axis.
bool IsShown(const ChartLimit& limit, const AxisPlaces& places) {
    const double from = places.At(limit.from), to = places.At(limit.to.value_or(limit.from));
    const double low = std::min(places.from, places.to), high = std::max(places.from, places.to);
    return std::max(from, to) >= low && std::min(from, to) <= high;  // false for what is no number
}

// The place with the fewest hits among those that are free.
class BestPlace {
public:
    BestPlace(const ChartCanvas& canvas, const ChartBox& plot, const CurveField& field, const TakenBoxes& taken)
        : m_canvas(canvas), m_plot(plot), m_field(field), m_taken(taken) {}

    // @param target where an arrow leads to
    void Try(const std::string& text, const LabelStyle& style, const ShapePoint& at, const LabelAnchor& anchor,
             double cost, const std::optional<ShapePoint>& target = {}) {
        const PlacedLabel label = LabelAt(m_canvas, text, style, at, anchor);
        const ChartBox box = Grown(label.box, m_canvas.Units(kGap / 2));
        if (!IsInside(box, m_plot) || !m_taken.IsFree(box)) return;
        const double all = cost + m_field.Hits(box) + (target ? ArrowHits(label.box, *target) : 0);
        if (all >= m_cost) return;
        m_cost = all;
        m_best = label;
    }
    const std::optional<PlacedLabel>& Best() const { return m_best; }

private:
    // Of the arrow's part that is not yet at the curve where it leads to.
    int ArrowHits(const ChartBox& box, const ShapePoint& target) const {
        const ShapePoint from{std::clamp(target.x, box.left, box.right), std::clamp(target.y, box.top, box.bottom)};
        const double length = std::hypot(target.x - from.x, target.y - from.y);
        const double share = 1 - m_canvas.Units(kAtTarget) / std::max(length, 1.0);
        if (share <= 0) return 0;
        return m_field.HitsAlong(from, {from.x + (target.x - from.x) * share, from.y + (target.y - from.y) * share});
    }

    const ChartCanvas& m_canvas;
    const ChartBox& m_plot;
    const CurveField& m_field;
    const TakenBoxes& m_taken;
    std::optional<PlacedLabel> m_best;
    double m_cost = std::numeric_limits<double>::infinity();
};

}  // namespace

std::vector<PlacedNote> PlaceLimitLabels(const Chart& chart, const ChartCanvas& canvas,
                                         const std::vector<AxisLayout>& axes, const ChartBox& plot,
                                         const CurveField& field, TakenBoxes& taken,
                                         std::vector<std::string>& leftOut) {
    std::vector<PlacedNote> placed;
    const double gap = canvas.Units(kGap);
    for (std::size_t i = 0; i < chart.limits.size(); ++i) {
        const ChartLimit& limit = chart.limits[i];
        if (limit.axis >= axes.size() || !IsShown(limit, axes[limit.axis].places)) {
            leftOut.push_back("limit: " + (limit.label.empty() ? NumberText(limit.from, 0, 0) : limit.label));
            continue;
        }
        if (limit.label.empty()) continue;
        const LabelStyle style{
            chart.theme.face, chart.theme.labelSize,
            Readable(limit.color.value_or(chart.theme.limit), chart.theme.plot, chart.theme.text, kTextContrast)};
        const std::string text = canvas.Shortened(limit.label, style, plot.Width() - 2 * gap);
        BestPlace best(canvas, plot, field, taken);
        // Beside the line, @p side before or after it.
        const auto tryBeside = [&](double at, double side, double cost) {
            if (text.empty() || !std::isfinite(at)) return;
            const bool isUpright = IsHorizontal(chart.axes[limit.axis]);
            for (const double share : {1.0, 0.0, 0.5, 0.75, 0.25}) {
                const double x = plot.left + gap + share * (plot.Width() - 2 * gap);
                const double y = plot.bottom - gap - share * (plot.Height() - 2 * gap);
                if (isUpright) {
                    best.Try(text, style, {at + side * gap, y}, {side > 0 ? 0.0 : 1.0, 1 - share}, cost);
                } else {
                    best.Try(text, style, {x, at + side * gap * 0.8}, {share, side > 0 ? 0.0 : 1.0}, cost);
                }
            }
        };
        const AxisPlaces& places = axes[limit.axis].places;
        const double from = places.At(limit.from);
        if (limit.to) {
            // Within the band, at either of its lines; below and to the right are later coordinates.
            const double to = places.At(*limit.to);
            tryBeside(from, to > from ? 1 : -1, 0);
            tryBeside(to, to > from ? -1 : 1, 0.25);
        }
        tryBeside(from, IsHorizontal(chart.axes[limit.axis]) ? 1 : -1, 0.5);
        tryBeside(from, IsHorizontal(chart.axes[limit.axis]) ? -1 : 1, 0.75);
        if (!best.Best()) {
            leftOut.push_back("limit: " + limit.label);
            continue;
        }
        taken.Take(best.Best()->box);
        placed.push_back({i, *best.Best(), {}});
    }
    return placed;
}

std::vector<PlacedNote> PlaceNotes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                                   const ChartBox& plot, const CurveField& field, TakenBoxes& taken,
                                   std::vector<std::string>& leftOut) {
    constexpr double kDistances[] = {12, 22, 36, 60, 90};  // points
    // Above to the right first, then around; the anchor is the corner or edge towards the place.
    constexpr ShapePoint kDirections[] = {{0.8, -0.6}, {-0.8, -0.6}, {0.8, 0.6}, {-0.8, 0.6},
                                          {0, -1},     {0, 1},       {1, 0},     {-1, 0}};
    std::vector<PlacedNote> placed;
    for (std::size_t i = 0; i < chart.notes.size(); ++i) {
        const ChartNote& note = chart.notes[i];
        const bool hasAxes = HasItsAxes(chart, note.xAxis, note.yAxis);
        BestPlace best(canvas, plot, field, taken);
        ShapePoint at;
        if (hasAxes) {
            at = {axes[note.xAxis].places.At(note.x), axes[note.yAxis].places.At(note.y)};
            const LabelStyle style{chart.theme.face, chart.theme.labelSize, chart.theme.text};
            const std::string text = canvas.Shortened(note.text, style, plot.Width() * 0.8);
            const bool isShown = !text.empty() && IsInside({at.x, at.y, at.x, at.y}, plot);
            for (const double distance : kDistances) {
                if (!isShown) break;
                for (const ShapePoint& direction : kDirections) {
                    const double length = canvas.Units(distance);
                    const auto anchor = [](double way) { return way > 0.3 ? 0.0 : way < -0.3 ? 1.0 : 0.5; };
                    best.Try(text, style, {at.x + direction.x * length, at.y + direction.y * length},
                             {anchor(direction.x), anchor(direction.y)}, distance / 40, at);
                }
            }
        }
        if (!best.Best()) {
            leftOut.push_back("note: " + note.text);
            continue;
        }
        taken.Take(best.Best()->box);
        placed.push_back({i, *best.Best(), at});
    }
    return placed;
}

}  // namespace qel
