// A control chart: warning and action limits at 2 and 3 standard deviations, and what left them.
#include <qellib10/graphics.h>

int main() {
    qel::Chart chart;
    chart.title = "Control chart, lead in the control sample";
    chart.subtitle = "mean 20.00 µg/L, s = 0.40 µg/L";
    chart.axes[0].title = "Run", chart.axes[0].low = 0, chart.axes[0].high = 31;
    chart.axes[1].title = "Found", chart.axes[1].unit = "µg/L", chart.axes[1].low = 18.4, chart.axes[1].high = 21.8;
    const double found[] = {20.1, 19.7, 20.3, 20.0, 19.5, 20.2, 20.4, 19.9, 19.8, 20.6, 20.1, 19.6, 20.0, 20.3, 19.3,
                            20.2, 19.9, 20.5, 20.1, 19.8, 20.4, 20.9, 21.4, 20.2, 19.9, 20.0, 19.6, 20.3, 20.1, 19.8};
    qel::ChartSeries line{.mark = qel::ChartMark::kCircle};
    for (int run = 0; run < 30; ++run) line.points.push_back({run + 1.0, found[run]});
    chart.series = {line};
    const COLORREF warning = RGB(0xB8, 0x74, 0x00), middle = RGB(0x2E, 0x7D, 0x32);
    chart.limits = {{.from = 21.2, .label = "Action +3 s"},
                    {.from = 20.8, .label = "Warning +2 s", .color = warning},
                    {.from = 20, .label = "Mean", .color = middle},
                    {.from = 19.2, .label = "Warning −2 s", .color = warning},
                    {.from = 18.8, .label = "Action −3 s"}};
    chart.notes = {{.x = 23, .y = 21.4, .text = "Run 23: new standard made"}};
    return chart.WritePng("control_chart.png", CSize(720, 450)) ? 0 : 1;
}
