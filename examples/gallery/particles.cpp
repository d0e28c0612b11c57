// A distribution of particle sizes: density as an area, the sum on the right axis, and D10, D50, D90.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Particle sizes of lactose";
    chart.axes[0].title = "Diameter", chart.axes[0].unit = "µm";
    chart.axes[0].scale = qel::ChartScale::kLogarithmic, chart.axes[0].low = 1, chart.axes[0].high = 1000;
    chart.axes[1].title = "Density", chart.axes[1].unit = "%", chart.axes[1].low = 0, chart.axes[1].high = 10;
    chart.axes.push_back({.side = qel::ChartSide::kRight, .title = "Below", .unit = "%", .low = 0, .high = 100});
    qel::ChartSeries density{.name = "Density", .kind = qel::ChartKind::kArea}, sum{.name = "Sum", .yAxis = 2};
    const double middle = std::log(74.0), spread = 0.62;
    for (double power = 0; power <= 3.0001; power += 0.02) {
        const double size = std::pow(10, power), z = (std::log(size) - middle) / spread;
        density.points.push_back({size, 8.1 * std::exp(-z * z / 2)});
        sum.points.push_back({size, 50 * std::erfc(-z / std::sqrt(2))});
    }
    chart.series = {density, sum};
    chart.notes = {{.x = 33.4, .y = 10, .text = "D10 33 µm", .yAxis = 2},
                   {.x = 74, .y = 50, .text = "D50 74 µm", .yAxis = 2},
                   {.x = 164, .y = 90, .text = "D90 164 µm", .yAxis = 2}};
    return chart.WritePng("particles.png", CSize(720, 450)) ? 0 : 1;
}
