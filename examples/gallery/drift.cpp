// Karl Fischer, coulometric: water found, and the drift that has to be below its limit before and after.
#include <qellib10/graphics.h>

#include <cmath>
#include <string>

int main() {
    qel::Chart chart;
    chart.title = "Water in methanol";
    chart.subtitle = "Karl Fischer, coulometric; sample added at 120 s";
    chart.axes[0].title = "Time", chart.axes[0].unit = "s";
    chart.axes[1].title = "Drift", chart.axes[1].unit = "µg/min";
    chart.axes[1].scale = qel::ChartScale::kLogarithmic, chart.axes[1].low = 1, chart.axes[1].high = 5000;
    chart.axes.push_back({.side = qel::ChartSide::kRight, .title = "Water", .unit = "µg", .low = 0});
    qel::ChartSeries drift{.name = "Drift"}, water{.name = "Water", .yAxis = 2};
    double found = 0;
    for (int second = 0; second <= 420; second += 2) {
        const double after = second - 120.0, noise = 0.6 * std::sin(second * 0.9) + 0.4 * std::sin(second * 2.3);
        double rate = 6 + noise;
        if (after > 0) rate += after < 45 ? 1900 * (1 - std::exp(-after / 6)) : 1899 * std::exp(-(after - 45) / 14);
        found += rate * 2 / 60;
        drift.points.push_back({double(second), rate});
        water.points.push_back({double(second), found});
    }
    chart.series = {drift, water};
    chart.limits = {{.from = 20, .label = "Start and stop below 20 µg/min"},
                    {.axis = 0, .from = 120, .label = "Sample", .color = RGB(0x77, 0x77, 0x77)}};
    chart.notes = {{.x = 350, .y = found - 7, .text = std::to_string(int(found)) + " µg", .yAxis = 2}};
    return chart.WritePng("drift.png", CSize(720, 450)) ? 0 : 1;
}
