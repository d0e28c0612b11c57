// Viscosity over shear rate, both logarithmic, at three temperatures.
#include <qellib10/graphics.h>

#include <cmath>
#include <string>

int main() {
    qel::Chart chart;
    chart.title = "Flow curves of a polymer solution";
    chart.axes[0].title = "Shear rate", chart.axes[0].unit = "1/s", chart.axes[0].scale = qel::ChartScale::kLogarithmic;
    chart.axes[1].title = "Viscosity", chart.axes[1].unit = "Pa·s", chart.axes[1].scale = qel::ChartScale::kLogarithmic;
    for (const int celsius : {15, 25, 40}) {
        const double rest = 42 * std::exp(-0.055 * (celsius - 15)), relaxing = 1.8 * std::exp(-0.05 * (celsius - 15));
        qel::ChartSeries line{.width = 1}, points{.kind = qel::ChartKind::kPoints};
        points.name = std::to_string(celsius) + " °C";
        points.colorOf = chart.series.size();  // the line's
        int i = 0;
        for (double power = -2; power <= 3.001; power += 0.05, ++i) {
            const double rate = std::pow(10, power);
            const double viscosity = 0.02 + (rest - 0.02) * std::pow(1 + std::pow(relaxing * rate, 2), (0.38 - 1) / 2);
            line.points.push_back({rate, viscosity});
            if (i % 5 == 0) points.points.push_back({rate, viscosity * (1 + 0.05 * std::sin(i * 1.3))});
        }
        chart.series.push_back(line);
        chart.series.push_back(points);
    }
    return chart.WritePng("flow_curve.png", CSize(720, 450)) ? 0 : 1;
}
