// As many axes as a chart may have: seven quantities of one fermentation, each with the colour of its curve.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Fermentation 118";
    chart.axes.resize(1);
    chart.axes[0].title = "Time", chart.axes[0].unit = "h";
    chart.hasLegend = false;
    const struct {
        const char *name, *unit;
        double start, end, middle, width;
    } quantities[] = {{"Optical density", "", 0.2, 38, 14, 4},        {"pH", "", 7.2, 6.6, 10, 3},
                      {"Temperature", "°C", 30, 37, 4, 0.7},          {"Dissolved O₂", "%", 98, 31, 11, 3},
                      {"Stirrer", "1/min", 250, 900, 12, 3},          {"Glucose", "g/L", 20.4, 0.3, 13, 3.2},
                      {"CO₂ in the exhaust", "%", 0.04, 4.1, 15, 3.5}};
    for (const auto& [name, unit, start, end, middle, width] : quantities) {
        const std::size_t axis = chart.axes.size();
        chart.axes.push_back({.side = axis < 4 ? qel::ChartSide::kLeft : qel::ChartSide::kRight,
                              .title = name,
                              .unit = unit,
                              .hasSeriesColor = true});
        qel::ChartSeries curve{.name = name, .yAxis = axis};
        for (int i = 0; i <= 300; ++i)
            curve.points.push_back(
                {i / 10.0, start + (end - start) * (1 + std::tanh((i / 10.0 - middle) / width)) / 2});
        chart.series.push_back(curve);
    }
    return chart.WritePng("eight_axes.png", CSize(800, 500)) ? 0 : 1;
}
