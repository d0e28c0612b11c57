// A calibration line with its 95 % band, standards with error bars, and a sample that is read from it.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Calibration of nitrate";
    chart.subtitle = "y = 0.0412 + 0.1837 x, r² = 0.9992, n = 7";
    chart.axes[0].title = "Concentration", chart.axes[0].unit = "mg/L";
    chart.axes[1].title = "Peak area", chart.axes[1].unit = "µS·min";
    const double areas[] = {0.05, 0.39, 0.79, 1.11, 1.55, 1.84, 2.26};
    qel::ChartSeries standards{.name = "Standards", .kind = qel::ChartKind::kPoints};
    qel::ChartSeries line{.name = "Line"}, band{.name = "95 % band", .kind = qel::ChartKind::kBand};
    for (int i = 0; i < 7; ++i) {
        standards.points.push_back({2.0 * i, areas[i]});
        standards.yErrors.down.push_back(0.03 + 0.02 * areas[i]);
    }
    for (double x = 0; x <= 12; x += 0.25) {
        const double y = 0.0412 + 0.1837 * x, half = 2.571 * 0.028 * std::sqrt(1 + 1 / 7.0 + (x - 6) * (x - 6) / 112);
        line.points.push_back({x, y});
        band.points.push_back({x, y + half});
        band.lower.push_back(y - half);
    }
    band.colorOf = 1;  // the line's
    chart.series = {band, line, standards};
    chart.notes = {{.x = 7.34, .y = 1.39, .text = "Sample: 7.34 mg/L", .isFlag = true}};
    return chart.WritePng("calibration.png", CSize(720, 450)) ? 0 : 1;
}
