// Two methods compared: the differences over the means, with the limits of agreement.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Karl Fischer and oven, 60 samples";
    chart.axes[0].title = "Mean of both methods", chart.axes[0].unit = "%";
    chart.axes[1].title = "Oven − Karl Fischer", chart.axes[1].unit = "%";
    qel::ChartSeries differences{.kind = qel::ChartKind::kPoints, .mark = qel::ChartMark::kOpenCircle};
    double sum = 0, squares = 0;
    for (int i = 0; i < 60; ++i) {
        const double mean = 2 + 12 * std::fmod(i * 0.618034, 1), u = std::fmod(i * 0.754878 + 0.3, 1);
        const double difference = 0.18 + 0.16 * std::log((u + 0.01) / (1.01 - u));
        differences.points.push_back({mean, difference});
        sum += difference / 60;
        squares += difference * difference / 60;
    }
    const double s = std::sqrt(squares - sum * sum);
    chart.series = {differences};
    chart.limits = {{.from = sum, .label = "Mean difference", .color = RGB(0x2E, 0x7D, 0x32)},
                    {.from = sum + 1.96 * s, .label = "+1.96 s"},
                    {.from = sum - 1.96 * s, .label = "−1.96 s"}};
    return chart.WritePng("agreement.png", CSize(720, 420)) ? 0 : 1;
}
