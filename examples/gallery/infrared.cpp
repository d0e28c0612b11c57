// An infrared spectrum, wavenumbers from high to low as they are shown.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Ethyl acetate, film between KBr windows";
    chart.axes[0].title = "Wavenumber", chart.axes[0].unit = "cm⁻¹";
    chart.axes[0].low = 500, chart.axes[0].high = 4000, chart.axes[0].isReversed = true;
    chart.axes[1].title = "Transmittance", chart.axes[1].unit = "%", chart.axes[1].low = 0, chart.axes[1].high = 100;
    const struct {
        double place, depth, width;
        const char* name;
    } bands[] = {{2984, 0.65, 22, "C–H"}, {2910, 0.28, 20, ""},   {1742, 1.75, 13, "C=O 1742"},
                 {1447, 0.25, 14, ""},    {1374, 0.8, 11, "CH₃"}, {1241, 1.85, 18, "C–O 1241"},
                 {1098, 0.42, 14, ""},    {1047, 1.1, 13, ""},    {938, 0.16, 12, ""},
                 {847, 0.22, 12, ""},     {786, 0.11, 12, ""},    {634, 0.24, 14, ""}};
    qel::ChartSeries spectrum;
    for (int place = 500; place <= 4000; place += 2) {
        double absorbance = 0.02;
        for (const auto& band : bands) absorbance += band.depth / (1 + std::pow((place - band.place) / band.width, 2));
        spectrum.points.push_back({double(place), 100 * std::pow(10, -absorbance)});
    }
    chart.series = {spectrum};
    for (const auto& band : bands) {
        const double bottom = 100 * std::pow(10, -band.depth - 0.04);
        if (*band.name != '\0') chart.notes.push_back({.x = band.place, .y = bottom, .text = band.name});
    }
    return chart.WritePng("infrared.png", CSize(720, 420)) ? 0 : 1;
}
