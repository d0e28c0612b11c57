// Counts of a decaying source with their square roots as errors, on a logarithmic axis.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Decay of barium-137m";
    chart.axes[0].title = "Time", chart.axes[0].unit = "s";
    chart.axes[1].title = "Counts in 10 s", chart.axes[1].scale = qel::ChartScale::kLogarithmic;
    qel::ChartSeries counts{.name = "Measured", .kind = qel::ChartKind::kPoints};
    qel::ChartSeries fit{.name = "Half-life 153 s and background"}, background{.name = "Background"};
    for (int i = 0; i <= 45; ++i) {
        const double time = 5 + 20.0 * i, expected = 3150 * std::pow(0.5, time / 153) + 14;
        const double off = 2 * std::fmod(i * 0.618034, 1) - 1 + 0.7 * std::sin(i * 12.9898);  // standard deviations
        const double found = std::max(1.0, std::round(expected + off * std::sqrt(expected)));
        counts.points.push_back({time, found});
        counts.yErrors.down.push_back(std::sqrt(found));
        fit.points.push_back({time, expected});
        background.points.push_back({time, 14});
    }
    background.dash = qel::ChartDash::kDash, background.width = 1;
    chart.series = {counts, fit, background};
    return chart.WritePng("decay.png", CSize(720, 450)) ? 0 : 1;
}
