// The content of ten tablets: bars from 90 %, with uncertainties, and the limits.
#include <qellib10/graphics.h>

#include <string>

int main() {
    qel::Chart chart;
    chart.title = "Uniformity of content, batch 26-0147";
    chart.axes[0].title = "Tablet", chart.axes[0].scale = qel::ChartScale::kCategories;
    chart.axes[0].high = 10.8;  // space for the texts of the limits
    chart.axes[1].title = "Content", chart.axes[1].unit = "% of the label", chart.axes[1].low = 80;
    chart.axes[1].high = 120;
    qel::ChartSeries bars{.kind = qel::ChartKind::kBars, .base = 80};
    const double contents[] = {99.2, 101.4, 97.8, 100.6, 102.3, 98.1, 94.9, 100.2, 103.5, 99.7};
    for (int i = 0; i < 10; ++i) {
        chart.axes[0].categories.push_back(std::to_string(i + 1));
        bars.points.push_back({double(i), contents[i]});
        bars.yErrors.down.push_back(1.4);
    }
    chart.series = {bars};
    chart.limits = {{.from = 85, .label = "85 %"},
                    {.from = 115, .label = "115 %"},
                    {.from = 99.77, .label = "Mean 99.8 %", .color = RGB(0x2E, 0x7D, 0x32)}};
    return chart.WritePng("tablets.png", CSize(720, 420)) ? 0 : 1;
}
