// A titration of a base, all texts in Japanese.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "炭酸ナトリウムの電位差滴定";
    chart.subtitle = "試料 0.1054 g、滴定液 0.1 mol/L 塩酸、25 ℃";
    chart.axes[0].title = "滴定量", chart.axes[0].unit = "mL";
    chart.axes[1].title = "電位", chart.axes[1].unit = "mV";
    qel::ChartSeries curve{.name = "測定値", .mark = qel::ChartMark::kCircle};
    qel::ChartSeries blank{.name = "空試験"};
    for (double volume = 0; volume <= 25; volume += 0.5) {
        const double first = 75 * std::tanh((volume - 9.95) / 1.1), second = 120 * std::tanh((volume - 19.9) / 0.8);
        curve.points.push_back({volume, 20 + 4 * volume + first + second});
        blank.points.push_back({volume, 305 - 350 * std::exp(-volume * 0.25)});
    }
    chart.series = {curve, blank};
    chart.notes = {{.x = 9.95, .y = -60.2, .text = "第一終点 9.95 mL", .isFlag = true},
                   {.x = 19.9, .y = 174.6, .text = "第二終点 19.90 mL", .isFlag = true}};
    return chart.WritePng("japanese.png", CSize(720, 450)) ? 0 : 1;
}
