// Dissolution of three batches, six vessels each: means with standard deviations, and what is asked for.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Dissolution of paracetamol 500 mg";
    chart.subtitle = "Paddle, 50 1/min, pH 5.8, n = 6";
    chart.axes[0].title = "Time", chart.axes[0].unit = "min", chart.axes[0].low = 0, chart.axes[0].high = 62;
    chart.axes[1].title = "Dissolved", chart.axes[1].unit = "%", chart.axes[1].low = 0, chart.axes[1].high = 110;
    const struct {
        const char* name;
        double rate;
        qel::ChartMark mark;
    } batches[] = {{"Batch 0141", 0.115, qel::ChartMark::kCircle},
                   {"Batch 0142", 0.092, qel::ChartMark::kSquare},
                   {"Batch 0143", 0.062, qel::ChartMark::kTriangle}};
    for (const auto& batch : batches) {
        qel::ChartSeries series{.name = batch.name, .mark = batch.mark};
        for (const double minute : {0, 5, 10, 15, 20, 30, 45, 60}) {
            const double dissolved = 99 * (1 - std::exp(-batch.rate * minute));
            series.points.push_back({minute, dissolved});
            series.yErrors.down.push_back(minute > 0 ? 1 + 0.12 * (100 - dissolved) : 0);
        }
        chart.series.push_back(series);
    }
    chart.limits = {{.from = 80, .label = "Q + 5 % = 80 %"}, {.axis = 0, .from = 30, .label = "30 min"}};
    return chart.WritePng("dissolution.png", CSize(720, 450)) ? 0 : 1;
}
