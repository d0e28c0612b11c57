// Three injections over each other, and the gradient as steps on the right axis.
#include <qellib10/graphics.h>

#include <cmath>
#include <string>

int main() {
    qel::Chart chart;
    chart.title = "System suitability, three injections";
    chart.axes[0].title = "Time", chart.axes[0].unit = "min", chart.axes[0].high = 15;
    chart.axes[1].title = "Signal", chart.axes[1].unit = "mV", chart.axes[1].high = 160;
    chart.axes.push_back({.side = qel::ChartSide::kRight, .title = "Acetonitrile", .unit = "%", .low = 0, .high = 100});
    for (int injection = 0; injection < 3; ++injection) {
        qel::ChartSeries curve{.name = "Injection " + std::to_string(injection + 1), .width = 1.2};
        for (int i = 0; i <= 1500; ++i) {
            const double time = i / 100.0;
            double signal = 3 + 6 * injection + time * 0.3;
            for (const double peak : {2.4, 5.1, 5.9, 8.8, 11.6}) {
                const double at = peak + 0.035 * injection, width = 0.06 + 0.012 * peak;
                signal += (40 + 80 * std::fabs(std::sin(peak))) * std::exp(-std::pow((time - at) / width, 2) / 2);
            }
            curve.points.push_back({time, signal});
        }
        chart.series.push_back(curve);
    }
    chart.series.push_back({.name = "Acetonitrile",
                            .kind = qel::ChartKind::kSteps,
                            .points = {{0, 10}, {3, 30}, {7, 55}, {10, 90}, {13, 10}, {15, 10}},
                            .yAxis = 2,
                            .color = RGB(0x77, 0x77, 0x77),
                            .width = 1,
                            .dash = qel::ChartDash::kDash});
    return chart.WritePng("gradient.png", CSize(720, 450)) ? 0 : 1;
}
