#include "qellib10/graph/chart_navigator.h"

#include <iomanip>
#include <sstream>

#include "../support/canvas.h"
#include "../support/line.h"
#include "../support/test.h"

namespace {

// Zooms and draws, as a window does.
class Window {
public:
    Window() : m_canvas(400, 300) {
        chart.axes[0].low = 0, chart.axes[0].high = 10, chart.axes[0].unit = "mL";
        chart.axes[1].low = 1, chart.axes[1].high = 100, chart.axes[1].scale = qel::ChartScale::kLogarithmic;
        chart.series = {{.name = "A", .points = {{1, 2}, {5, 10}, {9, 50}}}, {.points = {{4, 0}, {6, 20}}}};
        Draw();
    }
    void Draw() {
        report = chart.Draw(m_canvas.dc, CRect(0, 0, 400, 300), navigator.Shown());
        navigator.Take(chart, report);
    }
    // The ends of both axes, after drawing.
    std::string Ends() {
        Draw();
        std::ostringstream ends;
        ends << std::setprecision(3);
        for (const qel::AxisPlaces& axis : report.axes) ends << axis.low << ".." << axis.high << ' ';
        return ends.str();
    }
    qel::ShapePoint Place(double x, double y) const { return {report.axes[0].At(x), report.axes[1].At(y)}; }
    qel::ChartBox Box(double x1, double y1, double x2, double y2) const {
        return {Place(x1, y1).x, Place(x1, y1).y, Place(x2, y2).x, Place(x2, y2).y};
    }

    qel::Chart chart;
    qel::ChartNavigator navigator;
    qel::ChartReport report;

private:
    Canvas m_canvas;
};

}  // namespace

TEST(ChartNavigator, ZoomsAndMoves) {
    Window window;
    EXPECT_EQ(window.Ends(), "0..10 1..100 ");
    EXPECT_TRUE(window.navigator.ZoomAt(window.Place(5, 10), 2));
    EXPECT_EQ(window.Ends(), "2.5..7.5 3.16..31.6 ");
    EXPECT_TRUE(window.navigator.ZoomAt(window.Place(2.5, 10), 0.5, qel::ChartDirection::kX));
    EXPECT_EQ(window.Ends(), "2.5..12.5 3.16..31.6 ");
    window.navigator.Reset();
    window.Draw();
    EXPECT_TRUE(window.navigator.ZoomTo(window.Box(8, 10, 2, 20)));
    EXPECT_EQ(window.Ends(), "2..8 10..20 ");
    EXPECT_TRUE(window.navigator.PanBy(window.Place(2, 10).x - window.Place(5, 10).x, 0));
    EXPECT_EQ(window.Ends(), "5..11 10..20 ");
    EXPECT_TRUE(window.navigator.IsZoomed());
}

TEST(ChartNavigator, RefusesWhatWouldShowNothing) {
    Window window;
    const qel::ShapePoint middle = window.Place(5, 10), beside{1, 1};
    EXPECT_EQ(Line({window.navigator.ZoomAt(beside, 2), window.navigator.ZoomAt(middle, 0),
                    window.navigator.ZoomAt(middle, std::nan("")), window.navigator.PanBy(0, 0),
                    window.navigator.ZoomTo({middle.x, middle.y, middle.x + 2, middle.y + 2})}),
              "0 0 0 0 0");
    int zoomed = 0;
    while (zoomed < 200 && window.navigator.ZoomAt(window.Place(5, 10), 1000)) {
        window.Draw();
        ++zoomed;
    }
    EXPECT_LT(zoomed, 200) << "until numbers end";
    EXPECT_EQ(window.Ends(), "5..5 10..10 ");
}

TEST(ChartNavigator, KnowsTheValuesUnderThePointer) {
    Window window;
    std::string texts;
    for (const auto& value : window.navigator.ValuesAt(window.chart, window.Place(4.2, 1).x))
        texts += value.text + "; ";
    EXPECT_EQ(texts, "A: 5.00 mL, 10.00; 6.00 mL, 20.00; ") << "a point that is not on the axis has no place";
    const auto inside = window.navigator.PointsIn(window.chart, 0, window.Box(10, 100, 4, 5));
    EXPECT_EQ(Line({inside.size(), inside.empty() ? 9 : inside.front()}), "2 1");
    EXPECT_TRUE(window.navigator.PointsIn(window.chart, 7, {0, 0, 400, 300}).empty());
}

TEST(ChartNavigator, ValuesHaveTheDigitsThatARangeTellsApart) {
    constexpr auto kLinear = qel::ChartScale::kLinear, kLog = qel::ChartScale::kLogarithmic;
    constexpr auto kPrefix = qel::ChartExponent::kSiPrefix, kPower = qel::ChartExponent::kPower;
    for (const auto& [value, low, high, scale, exponent, unit, text] :
         Cases<double, double, double, qel::ChartScale, qel::ChartExponent, const char*, const char*>{
             {0.13737282841391888, -0.4, 0.3, kLinear, kPower, "mL", "0.1374 mL"},
             {1e9 + 0.0002, 1e9, 1e9 + 0.0003, kLinear, kPower, "", "1000000000.00020"},  // no more digits are true
             {2.5e-9, 0, 7e-9, kLinear, kPower, "A", "2.500×10⁻⁹ A"},
             {123456, 0, 2e5, kLinear, kPower, "cps", "123456 cps"},
             {2.5e-9, 0, 7e-9, kLinear, kPrefix, "A", "2.500 nA"},
             {0.25, 0, 0.7, kLinear, kPrefix, "%", "0.2500 %"},
             {2.0 / 7, 0.1, 100, kLog, kPower, "", "0.2857"},
             {123.456, 0.1, 1e5, kLog, kPrefix, "Pa", "123.5 Pa"},
             {1764345138.25, 1764345000, 1764346234, qel::ChartScale::kTime, kPower, "", "2025-11-28 15:52:18 UTC"},
             {1, -0.5, 1.5, qel::ChartScale::kCategories, kPower, "", "Lot 2"},
         }) {
        Window window;
        qel::ChartAxis& axis = window.chart.axes[0];
        axis = {.unit = unit, .scale = scale, .low = low, .high = high, .exponent = exponent};
        axis.categories = {"Lot 1", "Lot 2"};
        window.chart.series = {{.points = {{value, 10}}}};
        window.Draw();
        const auto values = window.navigator.ValuesAt(window.chart, window.Place(value, 1).x);
        ASSERT_EQ(values.size(), 1U) << text;
        EXPECT_EQ(values[0].text, text + std::string(", 10.00"));
    }
}
