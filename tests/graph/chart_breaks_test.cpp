#include <cmath>
#include <limits>

#include "qellib10/graph/axis_breaks.h"
#include "qellib10/graph/chart_navigator.h"
#include "qellib10/graph/linear_ticks.h"
#include "qellib10/print/queue_data.h"

#include "../support/canvas.h"
#include "../support/test.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
using Breaks = std::vector<qel::ChartBreak>;

std::string Show(const qel::AxisParts& parts) {
    std::string text;
    for (const qel::AxisRange& part : parts) text += Line({part.low, part.high}) + ", ";
    return text;
}

// Bars of 5, 245 and 100 at an axis without 20 to 230, and a line over times without their second day.
qel::Chart BrokenChart() {
    qel::Chart chart;
    chart.axes[0].low = -1, chart.axes[0].high = 3, chart.axes[0].unit = "mL", chart.axes[0].hasGrid = false;
    chart.axes[1].low = 0, chart.axes[1].high = 250;
    chart.axes[1].breaks = {{230, 20}};
    chart.series = {{.kind = qel::ChartKind::kBars, .points = {{0, 5}, {1, 245}, {2, 100}}},
                    {.name = "A", .points = {{-1, 10}, {3, 240}}, .color = kRed}};
    return chart;
}

}  // namespace

TEST(ChartBreaks, LeaveTheOtherRanges) {
    for (const auto& [breaks, expected] : Cases<Breaks, const char*>{
             {Breaks{}, "0 100, "},
             {Breaks{{20, 80}}, "0 20, 80 100, "},
             {Breaks{{60, 50}, {10, 30}, {20, 40}}, "0 10, 40 50, 60 100, "},
             {Breaks{{-5, 10}, {90, 200}}, "10 90, "},
             {Breaks{{0, 100}}, "0 100, "},
             {Breaks{{120, 130}, {NAN, 5}, {5, kInfinity}, {7, 7}}, "0 100, "},
         })
        EXPECT_EQ(Show(qel::PartsOf(breaks, {0, 100})), expected);
}

TEST(ChartBreaks, PartsHaveTheSameScale) {
    for (const bool isReversed : {false, true}) {
        const qel::AxisPlaces places =
            qel::PlacesOf({{0, 20}, {230, 250}}, false, isReversed ? 110 : 0, isReversed ? 0 : 110, 10);
        const auto at = [&](double place) { return isReversed ? 110 - place : place; };
        EXPECT_EQ(Line({at(places.At(10)), at(places.At(20)), at(places.At(230)), at(places.At(260)), places.At(100)}),
                  "25 50 60 135 nan");
        EXPECT_EQ(Line({places.ValueAt(at(25)), places.ValueAt(at(54)), places.ValueAt(at(56)), places.ValueAt(at(85)),
                        places.ValueAt(at(-5)), places.ValueAt(at(135))}),
                  "10 20 230 240 -2 260");
        EXPECT_EQ(places.Length(), 40);
        EXPECT_EQ(
            Line({at(places.Stepped(at(50), isReversed ? -1 : 1)), at(places.Stepped(at(61), isReversed ? 2 : -2)),
                  at(places.Stepped(at(10), isReversed ? -1 : 1))}),
            "60 50 11");
    }
    EXPECT_EQ(qel::PlacesOf({{0, 1}, {2, 3}}, false, 0, 8, 10).At(2), 5) << "gaps take at most a quarter";
}

TEST(ChartBreaks, EachPartHasATick) {
    constexpr double kDay = 86400, kStart = 1795824000;  // 2026-11-28
    const qel::AxisSpace space{400, [](std::string_view text) { return static_cast<double>(6 * text.size() + 12); }};
    for (const auto& [isTime, parts, expected] : Cases<bool, qel::AxisParts, const char*>{
             {false, qel::AxisParts{{0, 12}, {238, 250}}, "0 2 4 6 8 10 238 240 242 244 246 248 250 "},  // 12 meets 238
             {false, qel::AxisParts{{0, 10}, {1e6, 1e6 + 10}}, "0 5 1000000 1000005 1000010 "},
             {false, qel::AxisParts{{0, 100}, {1003, 1008}}, "0 10 20 30 40 50 60 70 80 90 1005 "},
             {false, qel::AxisParts{{0, 1}, {1e300, 2e300}}, "0.0 1.1 1.2 1.3 1.4 1.5 1.6 1.7 1.8 1.9 2.0 "},
             {true,
              qel::AxisParts{{kStart + 0.25 * kDay, kStart + 0.6 * kDay}, {kStart + 7 * kDay, kStart + 7.3 * kDay}},
              "11-28 06:00 09:00 12:00 12-05 03:00 06:00 "},
         }) {
        const qel::TickPlaces places(qel::PlacesOf(parts, false, 0, 400, 8));
        const qel::AxisTicks axis = isTime ? qel::TimeTicksAt(places, qel::ChartClock::kUtc, space)
                                           : qel::LinearTicksAt(places, qel::ChartExponent::kPower, space);
        std::string texts;
        for (const qel::AxisTick& tick : axis.ticks) texts += tick.text.empty() ? "" : tick.text + " ";
        EXPECT_EQ(texts, expected);
    }
}

TEST(ChartBreaks, CutCurvesAndMarkBars) {
    qel::Chart chart = BrokenChart();
    Canvas canvas(400, 300);
    const qel::ChartReport report = chart.Draw(canvas.dc, CRect(0, 0, 400, 300));
    EXPECT_TRUE(report.leftOut.empty());
    const qel::AxisPlaces &x = report.axes[0], &y = report.axes[1];
    const auto at = [&](double value, double place) { return canvas.At(static_cast<int>(x.At(value)), int(place)); };
    const double gap = (y.At(20) + y.At(230)) / 2;
    const COLORREF bar = chart.theme.palette[0];
    // In the gap there is nothing of the line, and of bars only the strokes; one whose value is left out ends there.
    EXPECT_EQ(at(1, gap), chart.theme.plot);
    EXPECT_EQ(at(1, y.At(19)), bar);
    EXPECT_EQ(at(1, y.At(232)), bar);
    EXPECT_EQ(at(2, y.At(15)), bar);
    EXPECT_EQ(at(2, y.At(233)), chart.theme.plot);
    for (const COLORREF stroke : {at(1, y.At(20)), at(1, y.At(230)), at(2, y.At(20))})
        EXPECT_TRUE(stroke != bar && stroke != chart.theme.plot) << stroke;
    for (int column = 0; column < 400; ++column) EXPECT_NE(canvas.At(column, static_cast<int>(gap)), kRed) << column;
}

TEST(ChartBreaks, WithoutEffectAreNamed) {
    qel::Chart chart = BrokenChart();
    chart.axes[0].scale = qel::ChartScale::kCategories;
    chart.axes[0].breaks = {{1, 2}};
    chart.axes[1].breaks = {{-1, 300}};
    chart.notes = {{.x = 1, .y = 100, .text = "shown"}};
    Canvas canvas(400, 300);
    const CRect box(0, 0, 400, 300);
    const auto leftOut = [&] {
        std::string all;
        for (const std::string& each : chart.Draw(canvas.dc, box).leftOut) all += each + ", ";
        return all;
    };
    EXPECT_EQ(leftOut(), "break: 1..2, break: \u22121..300, ");
    chart.axes[0].breaks.clear();
    chart.axes[1].breaks.assign(9, {10, 20});
    chart.axes[1].breaks.back() = {90, 110};
    EXPECT_EQ(leftOut(), "break: 90..110, ");
    chart.axes[1].breaks.pop_back();
    chart.axes[1].breaks.back() = {90, 110};
    EXPECT_EQ(leftOut(), "note: shown, ");
}

TEST(ChartBreaks, PointsAreFoundBesideThem) {
    qel::Chart chart;
    chart.axes[0].low = 0, chart.axes[0].high = 100;
    chart.axes[0].breaks = {{10, 90}};
    chart.series = {{.points = {{0, 0}, {4, 1}, {30, 2}, {50, 3}, {80, 4}, {97, 5}}}};
    qel::ChartNavigator window;
    for (const bool isRising : {true, false}) {
        if (!isRising) chart.series[0].points.push_back({2, 6});  // then each point is read
        CQelPrintJobQueueData job;
        const qel::ChartReport report = chart.Record(job, CRect(0, 0, 400, 300));
        window.Take(chart, report);
        const auto nearest = [&](double x) { return window.ValuesAt(chart, report.axes[0].At(x)).front().point; };
        EXPECT_EQ(Line({nearest(0), nearest(5), nearest(10), nearest(92), nearest(94), nearest(100)}), "0 1 1 5 5 5");
        const qel::ChartBox all{0, 0, 400, 300};
        EXPECT_EQ(window.PointsIn(chart, 0, all).size(), isRising ? 3U : 4U);
    }
}

TEST(ChartBreaks, AreTakenOutOfTheSpaceAroundTheDataAndOfWindows) {
    qel::Chart chart = BrokenChart();
    chart.axes[1].low.reset(), chart.axes[1].high.reset();
    chart.axes.push_back({.side = qel::ChartSide::kRight, .sameAs = 1});
    Canvas canvas(400, 300);
    qel::ChartNavigator window;
    const auto draw = [&] {
        const qel::ChartReport report = chart.Draw(canvas.dc, CRect(0, 0, 400, 300), window.Shown());
        window.Take(chart, report);
        return report.axes;
    };
    std::vector<qel::AxisPlaces> axes = draw();
    EXPECT_EQ(Line({axes[1].low, axes[1].high, axes[2].At(100)}), "0 246.75 nan") << "5 % of 35";
    EXPECT_EQ(window.ValuesAt(chart, axes[0].At(2)).front().text, "1.000 mL, 245.00") << "not the bar that is left out";
    const qel::ChartBox plot = window.Plot();
    EXPECT_TRUE(window.ZoomTo({plot.left, axes[1].At(235), plot.right, axes[1].At(10)}));
    axes = draw();
    EXPECT_NEAR(axes[1].low, 10, 1e-9);
    EXPECT_NEAR(axes[1].high, 235, 1e-9);
    EXPECT_EQ(axes[1].parts.size(), 2U);
    // Before the next drawing the window goes on from where it is.
    EXPECT_TRUE(window.ZoomTo({plot.left, axes[1].At(18), plot.right, axes[1].At(12)}));
    EXPECT_TRUE(window.PlacesOf(1)->parts.empty());
    EXPECT_TRUE(draw()[1].parts.empty());
}
