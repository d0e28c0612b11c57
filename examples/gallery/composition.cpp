// What samples consist of: stacked bars over long names.
#include <qellib10/graphics.h>

int main() {
    qel::Chart chart;
    chart.title = "Main components of cement";
    chart.axes[0].scale = qel::ChartScale::kCategories;
    chart.axes[0].categories = {"CEM I 42.5", "CEM II/A-S", "CEM II/B-V", "CEM III/A", "CEM III/B", "CEM IV/B"};
    chart.axes[1].title = "Mass fraction", chart.axes[1].unit = "%", chart.axes[1].low = 0, chart.axes[1].high = 100;
    const struct {
        const char* name;
        double shares[6];
    } parts[] = {{"CaO", {63.9, 60.2, 52.4, 53.1, 46.8, 44.6}},
                 {"SiO₂", {20.1, 22.4, 26.9, 27.2, 30.1, 33.4}},
                 {"Al₂O₃", {5.0, 6.1, 9.8, 8.6, 10.2, 12.1}},
                 {"Fe₂O₃", {2.9, 2.6, 4.1, 1.9, 1.3, 4.2}},
                 {"SO₃", {3.2, 3.0, 2.6, 2.8, 2.5, 2.2}}};
    for (const auto& part : parts) {
        qel::ChartSeries bars{.name = part.name, .kind = qel::ChartKind::kBars, .isStacked = true};
        for (int i = 0; i < 6; ++i) bars.points.push_back({double(i), part.shares[i]});
        chart.series.push_back(bars);
    }
    return chart.WritePng("composition.png", CSize(720, 450)) ? 0 : 1;
}
