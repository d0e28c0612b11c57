// A strip recorder: the last ten minutes of three channels, whole pixels as on a screen that runs.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Recorder, reactor 2";
    chart.axes[0].title = "Time", chart.axes[0].scale = qel::ChartScale::kTime, chart.axes[0].following = 600;
    chart.axes[1].title = "Temperature", chart.axes[1].unit = "°C";
    chart.axes[1].hasSeriesColor = true;
    chart.axes.push_back({.side = qel::ChartSide::kRight,
                          .title = "Pressure",
                          .unit = "kPa",
                          .low = 95,
                          .high = 125,
                          .hasSeriesColor = true});
    chart.axes.push_back({.side = qel::ChartSide::kRight,
                          .title = "Stirrer",
                          .unit = "1/min",
                          .low = 0,
                          .high = 800,
                          .hasSeriesColor = true});
    qel::ChartSeries heat{.name = "Temperature"}, pressure{.name = "Pressure", .yAxis = 2};
    qel::ChartSeries stirrer{.name = "Stirrer", .kind = qel::ChartKind::kSteps, .yAxis = 3};
    constexpr double kStart = 1780390800;  // 2026-06-02 09:00
    for (int second = 0; second <= 1500; ++second) {
        const double noise = 0.12 * std::sin(second * 1.7) + 0.1 * std::sin(second * 0.61);
        const double degrees =
            second < 1150 ? 60 + 4 * std::sin(second / 90.0) : 62.2 + 9 * std::tanh((second - 1150) / 120.0);
        heat.points.push_back({kStart + second, degrees + noise});
        pressure.points.push_back({kStart + second, 101.3 + (degrees - 56) * 0.9 + 2 * noise});
        stirrer.points.push_back({kStart + second, second < 1150 ? 300.0 : second < 1320 ? 450.0 : 600.0});
    }
    chart.series = {heat, pressure, stirrer};
    chart.isSmooth = false;
    return chart.WritePng("recorder.png", CSize(800, 400)) ? 0 : 1;
}
