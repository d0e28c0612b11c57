// A moisture balance: what is lost, how hot it is, and where drying stops.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Moisture of milk powder";
    chart.subtitle = "5.012 g, 105 °C, stops at 1 mg in 50 s";
    chart.axes[0].title = "Time", chart.axes[0].unit = "min";
    chart.axes[1].title = "Moisture", chart.axes[1].unit = "%", chart.axes[1].low = 0;
    chart.axes.push_back({.side = qel::ChartSide::kRight, .title = "Temperature", .unit = "°C", .low = 0, .high = 120});
    qel::ChartSeries lost{.name = "Moisture", .kind = qel::ChartKind::kArea};
    qel::ChartSeries heat{.name = "Temperature", .yAxis = 2, .width = 1};
    for (double minute = 0; minute <= 9; minute += 0.05) {
        lost.points.push_back({minute, 4.36 * (1 - std::exp(-std::pow(minute / 2.2, 1.6)))});
        const double reached =
            24 + 81 * (1 - std::exp(-minute / 0.7) * (std::cos(minute * 2) + 0.5 * std::sin(minute * 2)));
        heat.points.push_back({minute, reached});
    }
    chart.series = {lost, heat};
    chart.notes = {{.x = 7.85, .y = 4.355, .text = "4.36 % after 7 min 51 s", .isFlag = true}};
    return chart.WritePng("moisture.png", CSize(720, 450)) ? 0 : 1;
}
