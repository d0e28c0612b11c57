// Vinegar with sodium hydroxide: the pH, its slope on an axis of its own, and the end point.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Titration of vinegar";
    chart.subtitle = "5.00 mL sample, c(NaOH) = 0.1002 mol/L, 25 °C";
    chart.axes[0].title = "Volume of NaOH", chart.axes[0].unit = "mL";
    chart.axes[0].low = 0, chart.axes[0].high = 60;
    chart.axes[1].title = "pH", chart.axes[1].low = 2, chart.axes[1].high = 13;
    chart.axes[1].hasSeriesColor = true;
    chart.axes.push_back(
        {.side = qel::ChartSide::kRight, .title = "Slope", .unit = "1/mL", .low = 0, .hasSeriesColor = true});
    qel::ChartSeries curve{.name = "pH"}, slope{.name = "Slope", .yAxis = 2, .width = 1};
    constexpr double kAcid = 0.0834, kBase = 0.1002, kSample = 50, kPoint = kAcid * kSample / kBase;
    const auto volumeAt = [](double ph) {  // the charges in the solution balance
        const double h = std::pow(10, -ph), charge = h - 1e-14 / h;
        const double share = 1.75e-5 / (h + 1.75e-5);
        return kSample * (kAcid * share - charge) / (kBase + charge);
    };
    for (double ph = 2.92; ph < 12.4; ph += 0.04) {
        if (volumeAt(ph) < 0) continue;
        curve.points.push_back({volumeAt(ph), ph});
        slope.points.push_back({volumeAt(ph), 0.04 / (volumeAt(ph + 0.02) - volumeAt(ph - 0.02))});
    }
    chart.series = {curve, slope};
    chart.limits = {{.from = 8.2, .to = 9.8, .label = "Phenolphthalein", .color = RGB(0xAA, 0x33, 0x77)}};
    chart.notes = {{.x = kPoint, .y = 8.7, .text = "EP 41.62 mL, pH 8.7", .isFlag = true}};
    return chart.WritePng("titration.png", CSize(720, 450)) ? 0 : 1;
}
