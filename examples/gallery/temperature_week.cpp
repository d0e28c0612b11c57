// A refrigerator's temperature in a week: a time axis, the range that is allowed, and a door left open.
#include <qellib10/graphics.h>

#include <cmath>

int main() {
    qel::Chart chart;
    chart.title = "Refrigerator 4, standards";
    chart.axes[0].title = "Date", chart.axes[0].scale = qel::ChartScale::kTime;
    chart.axes[1].title = "Temperature", chart.axes[1].unit = "°C", chart.axes[1].low = 0, chart.axes[1].high = 12;
    constexpr double kStart = 1780272000, kDay = 86400;  // Monday, 2026-06-01
    qel::ChartSeries air{.name = "Air", .width = 1}, bottle{.name = "In the bottle"};
    double slow = 4.8;
    for (double second = 0; second <= 7 * kDay; second += 600) {
        const double hour = std::fmod(second, kDay) / 3600, day = std::floor(second / kDay);
        double degrees = 4.6 + 0.5 * std::sin(second / 1200) - 0.5 * std::cos(hour * M_PI / 12);
        if (day < 5 && hour > 8 && hour < 17) degrees += 0.9 * std::fabs(std::sin(hour * 5) * std::sin(hour + day));
        const double open = second - (3 * kDay + 15 * 3600);  // the door, on Thursday
        if (open > 0) degrees += open < 7200 ? 5.4 * open / 7200 : 5.4 * std::exp(-(open - 7200) / 4000);
        slow += (degrees - slow) * 0.06;
        air.points.push_back({kStart + second, degrees});
        bottle.points.push_back({kStart + second, slow});
    }
    chart.series = {air, bottle};
    chart.limits = {{.from = 2, .to = 8, .label = "2 to 8 °C", .color = RGB(0x2E, 0x7D, 0x32)}};
    chart.notes = {{.x = kStart + 3 * kDay + 17 * 3600, .y = 10.5, .text = "Door open"}};
    return chart.WritePng("temperature_week.png", CSize(800, 400)) ? 0 : 1;
}
