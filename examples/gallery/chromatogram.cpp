// A chromatogram: 6001 points, a note at the top of each peak.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Preservatives in a soft drink";
    chart.subtitle = "C18, 150 × 4.6 mm, 1.0 mL/min, 230 nm";
    chart.axes[0].title = "Retention time", chart.axes[0].unit = "min";
    chart.axes[1].title = "Absorbance", chart.axes[1].unit = "mAU";
    const struct {
        const char* name;
        double time, height, width;
    } peaks[] = {{"t₀", 1.45, 60, 0.03},          {"Ascorbic acid", 2.1, 210, 0.04}, {"Acesulfame", 3.64, 480, 0.05},
                 {"Saccharin", 4.32, 325, 0.055}, {"Caffeine", 6.85, 880, 0.07},     {"Aspartame", 7.7, 140, 0.08},
                 {"Benzoate", 9.05, 610, 0.085},  {"Sorbate", 9.62, 540, 0.09}};
    qel::ChartSeries curve{.width = 1.2};
    for (int i = 0; i <= 6000; ++i) {
        const double time = i / 500.0;
        double signal = 2 + 0.8 * time + 1.2 * std::sin(i * 0.71) * std::sin(i * 0.113);
        for (const auto& peak : peaks) {
            const double width = time < peak.time ? peak.width : peak.width * 1.35;  // they tail
            signal += peak.height * std::exp(-std::pow((time - peak.time) / width, 2) / 2);
        }
        curve.points.push_back({time, signal});
    }
    chart.series = {curve};
    for (const auto& peak : peaks)
        chart.notes.push_back({.x = peak.time, .y = peak.height + 2 + 0.8 * peak.time, .text = peak.name});
    return chart.WritePng("chromatogram.png", CSize(800, 450)) ? 0 : 1;
}
