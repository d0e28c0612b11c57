// Three halides, one after the other: end points with their lines to both axes.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Iodide, bromide and chloride with silver nitrate";
    chart.axes[0].title = "Volume of AgNO₃", chart.axes[0].unit = "mL";
    chart.axes[1].title = "Potential", chart.axes[1].unit = "mV";
    const struct {
        const char* name;
        double volume, potential;
    } points[] = {{"I⁻ 4.12 mL", 4.12, -20}, {"Br⁻ 9.35 mL", 9.35, 145}, {"Cl⁻ 16.08 mL", 16.08, 305}};
    qel::ChartSeries curve{.mark = qel::ChartMark::kOpenCircle};
    for (double volume = 0; volume <= 20; volume += 0.4) {
        double potential = 142.5 + 1.5 * (volume - 10);
        for (const auto& point : points) potential += 80 * std::tanh((volume - point.volume) / 0.35);
        curve.points.push_back({volume, potential});
    }
    chart.series = {curve};
    for (const auto& [name, volume, potential] : points) {
        const double height = 142.5 + 1.5 * (volume - 10) +
                              160 * (&name == &points[0].name   ? -1
                                     : &name == &points[1].name ? 0
                                                                : 1);
        chart.notes.push_back({.x = volume, .y = height, .text = name, .isFlag = true});
    }
    return chart.WritePng("silver_nitrate.png", CSize(720, 450)) ? 0 : 1;
}
