#include "qellib10/graph/chart_range.h"

#include <cmath>

#include "qellib10/graph/chart_cursor.h"
#include "qellib10/graph/chart_markers.h"
#include "qellib10/platform/text/string_table.h"

#include "../support/canvas.h"
#include "../support/line.h"
#include "../support/test.h"

namespace {

using qel::ChartKind;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::string Text(const qel::ChartRangeValues& values) {
    return Line({values.count, values.width, values.difference, values.mean, values.minimum, values.maximum,
                 values.area, values.slope});
}

// Two curves on two axes upward, drawn.
struct Window {
    Window() {
        chart.axes[0].low = 0, chart.axes[0].high = 10, chart.axes[0].title = "Volume", chart.axes[0].unit = "mL";
        chart.axes[1].low = 0, chart.axes[1].high = 100, chart.axes[1].unit = "mV";
        chart.series = {{.name = "empty"},
                        {.name = "A", .points = {{0, 0}, {2, 20}, {4, 40}, {kNan, 0}, {8, 80}, {10, 100}}},
                        {.name = "B", .points = {{1, 50}, {1.001, 50.01}, {9, 50}}}};
        Draw();
    }
    void Draw() {
        Canvas canvas(400, 300);
        navigator.Take(chart, chart.Draw(canvas.dc, CRect(0, 0, 400, 300), navigator.Shown()));
    }
    double X(double value) const { return navigator.PlacesOf(0)->At(value); }
    // The range, to a hundredth.
    std::string Range() const {
        const auto& range = markers.Range();
        if (!range) return "hidden";
        return Line({range->series, std::round(range->from * 100), std::round(range->to * 100)});
    }

    qel::Chart chart;
    qel::ChartNavigator navigator;
    qel::ChartMarkers markers;
};

}  // namespace

TEST(ChartRange, MeasuresWhatIsBetween) {
    const std::vector<CGraphData> line = {{0, 0}, {2, 4}, {4, 0}, {6, -4}};
    struct Case {
        const char* what;
        qel::ChartSeries series;
        double from, to;
        const char* expected;  // count, width, difference, mean, minimum, maximum, area, slope
    };
    for (const Case& c : {
             Case{"ends on points", {.points = line}, 0, 4, "3 4 0 1.33333 0 4 8 0"},
             Case{"ends between points, in the other order", {.points = line}, 5, 1, "2 4 -4 2 0 4 6 -2"},
             Case{"no point between", {.points = line}, 0.5, 1, "0 0.5 1 nan nan nan 0.75 nan"},
             Case{"past the end", {.points = line}, 5, 9, "1 4 nan -4 -4 -4 -3 nan"},
             Case{"nowhere", {.points = line}, 7, 9, "0 2 nan nan nan nan nan nan"},
             Case{"steps", {.kind = ChartKind::kSteps, .points = line}, 1, 5, "2 4 0 2 0 4 8 -2"},
             Case{"points", {.kind = ChartKind::kPoints, .points = line}, 1, 5, "2 4 -4 2 0 4 6 -2"},
             Case{"bars", {.kind = ChartKind::kBars, .points = line}, 0, 4, "3 4 0 1.33333 0 4 nan 0"},
             Case{"a gap", {.points = {{0, 1}, {1, 1}, {2, kNan}, {3, 1}, {4, 1}}}, 0, 4, "4 4 0 1 1 1 2 0"},
             Case{"left out", {.points = line, .leftOut = {{1, "stray"}}}, 0, 4, "2 4 0 0 0 0 0 0"},
             // Seconds since 1970 in milliseconds' steps: nothing is lost by their size.
             Case{"times",
                  {.points = {{1.6e9, 1}, {1.6e9 + 0.5, 2}, {1.6e9 + 1, 3}}},
                  0,
                  1.7e9,
                  "3 1.7e+09 nan 2 1 3 2 2"},
         }) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Text(qel::ValuesInRange(c.series, c.from, c.to)), c.expected);
    }
    EXPECT_EQ(qel::ValuesInRange({.points = line}, kNan, 3).count, 0U);

    // Of rising points only those nearby are read; falling ones are the same curve.
    qel::ChartSeries rising{.leftOut = {{0, ""}, {19, ""}, {20, ""}, {50, ""}, {80, ""}, {99, ""}}}, falling = rising;
    for (int i = 0; i < 100; ++i) rising.points.push_back({i / 3.0, i % 7 == 3 ? kNan : std::sin(i / 9.0)});
    rising.store = std::make_shared<qel::PointStore>();
    rising.store->Append(rising.points);
    falling.points.assign(rising.points.rbegin(), rising.points.rend());
    for (qel::ChartLeftOut& each : falling.leftOut) each.point = 99 - each.point;
    for (int from = -1; from < 34; ++from) {
        for (int to = from; to < 35; ++to) {
            const qel::ChartRangeValues up = qel::ValuesInRange(rising, from + 0.1, to + 0.2);
            const qel::ChartRangeValues down = qel::ValuesInRange(falling, from + 0.1, to + 0.2);
            EXPECT_EQ(Line({up.count, up.minimum, up.maximum, up.mean, up.slope, up.difference, up.area}),
                      Line({down.count, down.minimum, down.maximum, down.mean, down.slope, down.difference, down.area}))
                << from << " to " << to;
        }
    }
}

TEST(ChartRange, HasUnitsAndDecimalsOfItsAxes) {
    Window window;
    const auto text = [&](std::size_t series) {
        std::string all;
        for (const auto& [name, value] : qel::LinesOfRange(window.chart, window.navigator, {series, 1, 3}))
            all += name + " " + value + "; ";
        return all;
    };
    EXPECT_EQ(text(1),
              "width 2.00 mL; difference 20.0 mV; mean 20.0 mV; minimum 20.0 mV; maximum 20.0 mV; "
              "area 40.00 mV·mL; ");
    EXPECT_EQ(text(9), "");
    window.chart.axes[0] = {.scale = qel::ChartScale::kTime};
    window.chart.axes[1].unit = "";
    window.chart.series[1].points = {{1, 10}, {3, 30}};
    window.Draw();
    EXPECT_EQ(text(1).substr(0, 30), "width 2.000 s; difference 20.0");
    EXPECT_TRUE(text(1).ends_with("area 40.00 s; slope 10.00 1/s; ")) << text(1);
    qel::SetTableLanguage(qel::Language::Japanese);
    EXPECT_TRUE(text(1).starts_with("幅 2.000 s; 差 20.0; 平均 20.0; ")) << text(1);
    qel::SetTableLanguage(qel::Language::English);
    EXPECT_TRUE(window.navigator.ValueOf(window.chart, 1, 0)->text.ends_with("1970-01-01 00:00:01.000 UTC, 10.0"));
    window.chart.axes[0] = {.scale = qel::ChartScale::kCategories, .categories = {"blank", "sample"}};
    window.Draw();
    EXPECT_EQ(window.navigator.ValueOf(window.chart, 1, 0)->text, "A: sample, 10.0");
}

TEST(ChartMarkers, AreMovedByPlacesAndKeepTheirOrder) {
    Window window;
    auto& [chart, navigator, markers] = window;
    EXPECT_FALSE(markers.MoveTo(chart, navigator, 100));
    EXPECT_TRUE(markers.Toggle(chart, navigator));
    EXPECT_EQ(window.Range(), "1 250 750") << "of the first series with points";
    EXPECT_FALSE(markers.Grab(chart, navigator, window.X(5), 5));
    EXPECT_TRUE(markers.Grab(chart, navigator, window.X(2.4), 5));
    EXPECT_TRUE(markers.MoveTo(chart, navigator, window.X(9)));
    EXPECT_EQ(window.Range(), "1 750 900") << "past the other one";
    EXPECT_TRUE(markers.MoveBy(chart, navigator, 1e6));
    EXPECT_EQ(window.Range(), "1 750 1000") << "at the edge of the plot";
    markers.Swap();
    EXPECT_TRUE(markers.MoveTo(chart, navigator, window.X(3)));
    EXPECT_TRUE(markers.NextSeries(chart, navigator));
    EXPECT_EQ(window.Range(), "2 300 1000");
    EXPECT_TRUE(markers.NextSeries(chart, navigator));
    EXPECT_EQ(window.Range(), "1 300 1000") << "a series without points is passed over";
    markers.Set(qel::ChartRange{1, 8, 2});
    EXPECT_EQ(window.Range(), "1 200 800");
    EXPECT_TRUE(markers.Toggle(chart, navigator));
    EXPECT_EQ(window.Range(), "hidden");
    markers.Set(qel::ChartRange{1, kNan, 2});
    EXPECT_EQ(window.Range(), "hidden");
}

TEST(ChartCursor, GoesByPointsThatCanBeToldApart) {
    Window window;
    qel::ChartCursor cursor;
    std::string points;
    while (cursor.Step(window.chart, window.navigator, true))
        points += std::to_string(cursor.At(window.chart, window.navigator)->point) + ' ';
    EXPECT_EQ(points, "0 1 2 4 5 ") << "past the gap";
    EXPECT_TRUE(cursor.NextSeries(window.chart, window.navigator));
    EXPECT_EQ(cursor.At(window.chart, window.navigator)->text, "B: 9.00 mL, 50.0 mV");
    cursor.Set(2, 0);
    EXPECT_TRUE(cursor.Step(window.chart, window.navigator, true));
    EXPECT_EQ(cursor.At(window.chart, window.navigator)->point, 2U) << "the second one is at the same place";
    EXPECT_TRUE(cursor.NextSeries(window.chart, window.navigator));
    EXPECT_EQ(cursor.At(window.chart, window.navigator)->series, 1U);
    window.chart.series[1].points.clear();
    EXPECT_FALSE(cursor.At(window.chart, window.navigator)) << "its point is gone";
    const qel::ShapePoint at{window.X(1), window.navigator.PlacesOf(1)->At(50)};
    EXPECT_EQ(window.navigator.PointNear(window.chart, {at.x + 3, at.y + 3}, 5)->series, 2U);
    EXPECT_FALSE(window.navigator.PointNear(window.chart, {at.x + 4, at.y + 4}, 5));
}
