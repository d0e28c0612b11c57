// Residues in eight samples, two of which are far above the others: the axis leaves out what is between.
#include <qellib10/graphics.h>

int main() {
    qel::Chart chart;
    chart.title = "Residues in tea, week 47";
    chart.axes[0].scale = qel::ChartScale::kCategories;
    chart.axes[0].categories = {"Assam", "Darjeeling", "Gyokuro", "Keemun", "Mate", "Oolong", "Sencha", "Yunnan"};
    chart.axes[1].title = "Residue", chart.axes[1].unit = "µg/kg", chart.axes[1].low = 0;
    chart.axes[1].breaks = {{17, 231}};
    qel::ChartSeries first{.name = "Anthraquinone", .kind = qel::ChartKind::kBars};
    qel::ChartSeries second{.name = "Biphenyl", .kind = qel::ChartKind::kBars};
    const double found[][2] = {{5.1, 3.2}, {12.4, 6.0}, {3.3, 2.1},   {241.2, 8.8},
                               {9.6, 4.9}, {14.2, 7.7}, {2.8, 238.5}, {7.4, 5.2}};
    for (int i = 0; i < 8; ++i) {
        first.points.push_back({double(i), found[i][0]});
        second.points.push_back({double(i), found[i][1]});
        first.yErrors.down.push_back(0.06 * found[i][0] / (found[i][0] > 100 ? 5 : 1));
    }
    chart.series = {first, second};
    chart.limits = {{.from = 10, .label = "Limit 10 µg/kg"}};
    return chart.WritePng("residues.png", CSize(720, 420)) ? 0 : 1;
}
