// Spectra of six concentrations: the colours and the legend of a family of curves.
#include <qellib10/graphics.h>

#include <cmath>
#include <string>

int main() {
    qel::Chart chart;
    chart.title = "Potassium permanganate, 1 cm";
    chart.axes[0].title = "Wavelength", chart.axes[0].unit = "nm", chart.axes[0].low = 400, chart.axes[0].high = 700;
    chart.axes[1].title = "Absorbance", chart.axes[1].low = 0;
    const struct {
        double place, height, width;
    } bands[] = {{488, 0.28, 13}, {506, 0.62, 11}, {525, 0.92, 11}, {545, 0.86, 11}, {566, 0.36, 11}, {330, 0.7, 45}};
    for (const int concentration : {50, 100, 200, 300, 400, 500}) {
        qel::ChartSeries spectrum{.name = std::to_string(concentration) + " µmol/L"};
        for (int place = 400; place <= 700; ++place) {
            double absorbance = 0.01;
            for (const auto& band : bands)
                absorbance += band.height * std::exp(-std::pow((place - band.place) / band.width, 2) / 2);
            spectrum.points.push_back({double(place), absorbance * concentration / 400});
        }
        chart.series.push_back(spectrum);
    }
    chart.limits = {{.axis = 0, .from = 525, .label = "525 nm"}};
    return chart.WritePng("absorbance.png", CSize(720, 450)) ? 0 : 1;
}
