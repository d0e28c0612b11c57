// A shelf life: content over 36 months, the line's one-sided 95 % band, and where it meets the limit.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Stability of adrenaline 1 mg/mL at 25 °C";
    chart.axes[0].title = "Storage", chart.axes[0].unit = "months", chart.axes[0].low = 0, chart.axes[0].high = 48;
    chart.axes[1].title = "Content", chart.axes[1].unit = "%", chart.axes[1].low = 92, chart.axes[1].high = 103;
    qel::ChartSeries found{
        .name = "Found",
        .kind = qel::ChartKind::kPoints,
        .points = {{0, 100.3}, {3, 99.9}, {6, 99.2}, {9, 99.3}, {12, 98.4}, {18, 97.9}, {24, 96.6}, {36, 95.1}}};
    qel::ChartSeries line{.name = "Line with 95 % band", .hasErrorBand = true};
    for (double month = 0; month <= 48; month += 1) {
        line.points.push_back({month, 100.26 - 0.1475 * month});
        line.yErrors.down.push_back(1.943 * 0.26 * std::sqrt(1 / 8.0 + std::pow(month - 13.5, 2) / 1028));
    }
    chart.series = {line, found};
    chart.limits = {{.from = 95, .label = "95 % of the label"}};
    chart.notes = {{.x = 33.2, .y = 95, .text = "33 months", .isFlag = true}};
    return chart.WritePng("stability.png", CSize(720, 450)) ? 0 : 1;
}
