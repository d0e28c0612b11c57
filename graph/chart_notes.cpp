#include "qellib10/graph/chart_notes.h"

#include "qellib10/graph/chart_place.h"

namespace qel {

std::vector<PlacedNote> PlaceNotes(const Chart& chart, const ChartCanvas& canvas, const std::vector<AxisLayout>& axes,
                                   const ChartBox& plot, const CurveField& field, TakenBoxes& taken) {
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
        if (!best.Best()) continue;
        taken.Take(best.Best()->box);
        placed.push_back({i, *best.Best(), at});
    }
    return placed;
}

}  // namespace qel
