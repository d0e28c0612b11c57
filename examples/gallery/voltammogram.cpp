// Cyclic voltammograms: curves that come back, currents with an SI prefix.
#include <qellib10/graphics.h>

#include <cmath>
#include <string>

namespace {

// A current that rises as the potential does, then falls as the solution near the electrode is used up.
double Wave(double x) { return 1 / (1 + std::exp(-x)) * (0.35 + 1.1 / std::sqrt(1 + std::log1p(std::exp(x)))); }

}  // namespace

int main() {
    qel::Chart chart;
    chart.title = "Ferrocene in acetonitrile";
    chart.axes[0].title = "Potential against Ag/Ag⁺", chart.axes[0].unit = "V";
    chart.axes[1].title = "Current", chart.axes[1].unit = "A", chart.axes[1].exponent = qel::ChartExponent::kSiPrefix;
    for (const int rate : {50, 100, 200, 400}) {
        qel::ChartSeries curve{.name = std::to_string(rate) + " mV/s"};
        const double scale = 2.6e-6 * std::sqrt(rate / 50.0);
        for (int i = 0; i <= 600; ++i) {
            const double on = -0.25 + i / 400.0, volt = i <= 300 ? on : 1 - on;
            double current = Wave((on - 0.1) / 0.0257) + (i <= 300 ? 0.08 : -0.08);
            if (i > 300) current -= 2 * Wave((0.1 - volt) / 0.0257) * 0.9;
            curve.points.push_back({volt, scale * current});
        }
        chart.series.push_back(curve);
    }
    return chart.WritePng("voltammogram.png", CSize(720, 450)) ? 0 : 1;
}
