// Residuals of the calibration, as drops from 0, and the limits for an outlier.
#include <qellib10/graphics.h>

int main() {
    qel::Chart chart;
    chart.title = "Residuals of the calibration of nitrate";
    chart.axes[0].title = "Concentration", chart.axes[0].unit = "mg/L";
    chart.axes[1].title = "Residual", chart.axes[1].unit = "nS·min";
    const double residuals[][3] = {{12, -6, 3},  {-22, -15, -31}, {18, 9, 24},  {-35, -19, -28},
                                   {45, 30, 38}, {-33, -46, 91},  {18, 27, -12}};
    qel::ChartSeries first{.name = "Day 1", .kind = qel::ChartKind::kPoints, .hasDrops = true};
    qel::ChartSeries second = first, third = first;
    second.name = "Day 2", third.name = "Day 3";
    for (int i = 0; i < 7; ++i) {
        first.points.push_back({2 * i - 0.15, residuals[i][0]});
        second.points.push_back({2.0 * i, residuals[i][1]});
        third.points.push_back({2 * i + 0.15, residuals[i][2]});
    }
    chart.series = {first, second, third};
    chart.limits = {{.from = 72, .label = "+2.57 s"}, {.from = -72, .label = "−2.57 s"}};
    chart.notes = {{.x = 10.15, .y = 91, .text = "Outlier?"}};
    return chart.WritePng("residuals.png", CSize(720, 400)) ? 0 : 1;
}
