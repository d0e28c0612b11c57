#include "qellib10/graph/chart_limit_labels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "qellib10/graph/chart_look.h"
#include "qellib10/graph/chart_place.h"

namespace qel {
namespace {

constexpr double kGap = 3;         // points, to the edge of the plot
constexpr double kFromLine = 0.8;  // of it, to the line
constexpr double kCostOfLine = 2;  // that would be hidden

class LimitLabeller {
public:
    LimitLabeller(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                  const ChartBox& plot, const CurveField& field, const TakenBoxes& taken, bool mayHideLimits)
        : m_chart(chart),
          m_canvas(canvas),
          m_axes(axes),
          m_plot(plot),
          m_field(field),
          m_taken(taken),
          m_mayHideLimits(mayHideLimits) {}

    std::optional<PlacedLabel> Placed(std::size_t index, const LimitSpan& span) const {
        // The ends first: there fewest labels meet.
        constexpr std::array kFirst = {1.0, 0.0, 0.5, 0.75, 0.25};
        if (auto label = Placed(index, span, kFirst)) return label;
        std::array<double, 33> shares;
        for (std::size_t i = 0; i < shares.size(); ++i)
            shares[i] = static_cast<double>(i) / static_cast<double>(shares.size() - 1);
        return Placed(index, span, shares);
    }

private:
    std::optional<PlacedLabel> Placed(std::size_t index, const LimitSpan& span, std::span<const double> shares) const {
        const ChartLimit& limit = m_chart.limits[index];
        const bool isUpright = IsHorizontal(m_chart.axes[limit.axis]);
        const double gap = m_canvas.Units(kGap);
        const LabelStyle style = StyleOf(limit, m_chart.theme);
        const std::string text = m_canvas.Shortened(limit.label, style, m_plot.Width() - 2 * gap);
        if (text.empty()) return {};
        BestPlace best(m_canvas, m_plot, m_field, m_taken);
        // Beside the line, @p side before or after it.
        const auto tryBeside = [&](double at, double side, double cost) {
            for (const double share : shares) {
                const double x = m_plot.left + gap + share * (m_plot.Width() - 2 * gap);
                const double y = m_plot.bottom - gap - share * (m_plot.Height() - 2 * gap);
                const ShapePoint place =
                    isUpright ? ShapePoint{at + side * gap, y} : ShapePoint{x, at + side * gap * kFromLine};
                const LabelAnchor anchor =
                    isUpright ? LabelAnchor{side > 0 ? 0.0 : 1.0, 1 - share} : LabelAnchor{share, side > 0 ? 0.0 : 1.0};
                // Up to its line: another one between them would seem to be its own.
                ChartBox box = LabelAt(m_canvas, text, style, place, anchor).box;
                if (isUpright) {
                    box.left = std::min(box.left, at);
                    box.right = std::max(box.right, at);
                } else {
                    box.top = std::min(box.top, at);
                    box.bottom = std::max(box.bottom, at);
                }
                const int along = LinesIn(box, isUpright), across = LinesIn(box, !isUpright);
                if (along == 0 || m_mayHideLimits)
                    best.Try(text, style, place, anchor, cost + kCostOfLine * (along + across));
            }
        };
        const AxisPlaces& places = m_axes[limit.axis].places;
        const double from = places.At(limit.from), to = limit.to ? places.At(*limit.to) : from;
        const LabelSize size = m_canvas.Measure(text, style);
        const double across = isUpright ? size.width + 2 * gap : size.Height() + 2 * gap * kFromLine;
        if (limit.to && span.high - span.low >= across) {
            // Within the band, at either of its lines; below and to the right are later coordinates.
            if (IsWithin(from, span)) tryBeside(from, from < span.high ? 1 : -1, 0);
            if (IsWithin(to, span)) tryBeside(to, to < span.high ? 1 : -1, 0.25);
            if (!best.Best()) tryBeside(span.low, 1, 0);
        }
        const double line = IsWithin(from, span) ? from : IsWithin(to, span) ? to : NAN;
        if (std::isfinite(line)) {
            tryBeside(line, isUpright ? 1 : -1, 0.5);
            tryBeside(line, isUpright ? -1 : 1, 0.75);
        }
        return best.Best();
    }

    static bool IsWithin(double place, const LimitSpan& span) { return place >= span.low && place <= span.high; }

    // How many lines of limits the box hides, of upright ones or of the others.
    int LinesIn(const ChartBox& box, bool isUpright) const {
        int lines = 0;
        for (const ChartLimit& limit : m_chart.limits) {
            if (limit.axis >= m_axes.size() || IsHorizontal(m_chart.axes[limit.axis]) != isUpright) continue;
            const double low = isUpright ? box.left : box.top, high = isUpright ? box.right : box.bottom;
            for (const std::optional<double>& end : {std::optional(limit.from), limit.to}) {
                const double place = end ? m_axes[limit.axis].places.At(*end) : NAN;
                lines += place > low && place < high ? 1 : 0;
            }
        }
        return lines;
    }

    const Chart& m_chart;
    const ChartCanvas& m_canvas;
    const std::vector<AxisLayout>& m_axes;
    const ChartBox& m_plot;
    const CurveField& m_field;
    const TakenBoxes& m_taken;
    const bool m_mayHideLimits;
};

}  // namespace

std::optional<LimitSpan> SpanOf(const ChartLimit& limit, const AxisPlaces& places) {
    const double low = std::min(places.from, places.to), high = std::max(places.from, places.to);
    double from = places.At(limit.from), to = limit.to ? places.At(*limit.to) : from;
    // One end in a break: the band reaches to it.
    if (std::isnan(from)) from = to;
    if (std::isnan(to)) to = from;
    if (from > to) std::swap(from, to);
    if (!(from <= high && to >= low)) return {};
    return LimitSpan{std::max(from, low), std::min(to, high)};
}

LabelStyle StyleOf(const ChartLimit& limit, const ChartTheme& theme) {
    return {theme.face, theme.labelSize,
            Readable(limit.color.value_or(theme.limit), theme.plot, theme.text, kTextContrast)};
}

std::vector<std::size_t> LimitsWithLabels(const Chart& chart, const std::vector<AxisLayout>& axes) {
    std::vector<std::size_t> limits;
    for (std::size_t i = 0; i < chart.limits.size(); ++i) {
        const ChartLimit& limit = chart.limits[i];
        const bool isShown = limit.axis < axes.size() && SpanOf(limit, axes[limit.axis].places);
        if (isShown && !limit.label.empty()) limits.push_back(i);
    }
    return limits;
}

std::vector<LimitLabel> PlaceLimitLabels(const Chart& chart, const ChartCanvas& canvas,
                                         const std::vector<AxisLayout>& axes, const ChartBox& plot,
                                         const CurveField& field, TakenBoxes& taken, std::vector<std::size_t>& limits,
                                         bool mayHideLimits) {
    std::vector<LimitLabel> placed;
    const LimitLabeller labeller(chart, canvas, axes, plot, field, taken, mayHideLimits);
    std::erase_if(limits, [&](std::size_t i) {
        const auto label = labeller.Placed(i, *SpanOf(chart.limits[i], axes[chart.limits[i].axis].places));
        if (!label) return false;
        taken.Take(label->box);
        placed.push_back({i, *label});
        return true;
    });
    return placed;
}

}  // namespace qel
