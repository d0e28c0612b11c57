#include "qellib10/graph/left_out.h"

#include "qellib10/graph/chart_csv.h"
#include "qellib10/graph/chart_navigator.h"
#include "qellib10/platform/failure.h"
#include "qellib10/print/queue_data.h"

#include "../support/canvas.h"
#include "../support/line.h"
#include "../support/temp_folder.h"
#include "../support/test.h"

namespace {

using qel::ChartKind;

// A flat curve in red with a stray reading far above it.
qel::Chart Stray(ChartKind kind) {
    qel::Chart chart;
    chart.axes[0].title = "Volume", chart.axes[0].unit = "mL";
    chart.axes[1].low = 0, chart.axes[1].high = 10, chart.axes[1].unit = "mV";
    chart.series = {{.name = "Cell \"1\"", .kind = kind, .points = {{0, 1}, {1, 1}, {2, 9}, {3, 1}, {4, 1}}}};
    chart.series[0].color = kRed;
    chart.series[0].lower = {0, 0, 0, 0, 0};
    chart.series[0].yErrors.down = {1, 1, 1, 1, 1};
    chart.series[0].hasDrops = kind == ChartKind::kPoints;
    chart.isSmooth = false;
    chart.hasLegend = false;
    return chart;
}

// The height of what is red above the lowest reading, 0 for nothing.
long RedAboveReadings(const qel::Chart& chart) {
    Canvas canvas(300, 200);
    const qel::ChartReport report = chart.Draw(canvas.dc, CRect(0, 0, 300, 200));
    const CRect red = canvas.Box([](COLORREF color) {
        return GetRValue(color) > GetGValue(color) + 30 && GetRValue(color) > GetBValue(color) + 30;
    });
    return std::max(0L, std::lround(report.axes[1].At(3)) - red.top);
}

}  // namespace

TEST(LeftOut, NoDrawingHasAPointThatDoesNotCount) {
    for (const ChartKind kind : {ChartKind::kLine, ChartKind::kSteps, ChartKind::kPoints, ChartKind::kBars,
                                 ChartKind::kArea, ChartKind::kBand}) {
        SCOPED_TRACE(static_cast<int>(kind));
        qel::Chart chart = Stray(kind);
        EXPECT_GT(RedAboveReadings(chart), 50);
        chart.series[0].leftOut = {{2, "air bubble"}, {7, "no such point"}};
        EXPECT_EQ(RedAboveReadings(chart), 0);
        chart.series[0].hasErrorBand = true;
        EXPECT_EQ(RedAboveReadings(chart), 0);
        // The line passes on to points beyond the edge, whatever is left out there.
        chart.axes[0].low = 2.5;
        EXPECT_EQ(RedAboveReadings(chart), 0);
    }
}

TEST(LeftOut, TheSameClickTakesPointsBack) {
    qel::ChartSeries series{.points = {{0, 0}, {1, 0}, {2, 0}, {3, 0}}};
    const auto state = [&] {
        std::string text;
        for (const std::size_t point : qel::PointsLeftOut(series))
            text += std::to_string(point) + *qel::ReasonLeftOut(series, point) + ' ';
        return text;
    };
    EXPECT_TRUE(qel::ToggleLeftOut(series, {2, 1, 9, 2}, "a"));
    EXPECT_EQ(state(), "1a 2a ");
    EXPECT_TRUE(qel::ToggleLeftOut(series, {1, 3}, "b")) << "those that are left out keep their reason";
    EXPECT_EQ(state(), "1a 2a 3b ");
    EXPECT_TRUE(qel::ToggleLeftOut(series, {3, 1}, "c"));
    EXPECT_EQ(state(), "2a ");
    EXPECT_FALSE(qel::ToggleLeftOut(series, {4}, "d"));
    EXPECT_FALSE(qel::ReasonLeftOut(series, 0) || qel::ReasonLeftOut(series, 4));
}

TEST(LeftOut, LegendCursorAndJobShowTheReason) {
    qel::Chart chart = Stray(ChartKind::kLine);
    chart.hasLegend = true;
    chart.series.push_back({.points = {{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}, {5, 5}}});
    chart.series[0].leftOut = {{2, "air bubble"}};
    chart.series[1].leftOut = {{1, "air bubble"}, {0, ""}, {2, "drift"}, {3, "noise"}, {4, "leak"}, {5, "end"}};
    const CRect box(0, 0, 640, 420);
    Canvas canvas(640, 420), replayed(640, 420);
    CQelPrintJobQueueData job;
    const qel::ChartReport report = chart.Draw(canvas.dc, box);
    std::string legend;
    for (const qel::ChartText& text : report.texts)
        if (text.text.ends_with(')')) legend += text.text + "; ";
    EXPECT_EQ(legend,
              "Volume (mL); left out: air bubble (2); left out (1); left out: drift (1); "
              "left out: noise (1); left out: … (2); ");
    chart.Record(job, box);
    job.GetBlock().DrawCommand(&replayed.dc);
    EXPECT_TRUE(canvas.Pixels() == replayed.Pixels());
    const COLORREF grey = chart.theme.faintText;
    EXPECT_GT(canvas.Box([&](COLORREF color) { return color == grey; }).Width(), 0);

    qel::ChartNavigator navigator;
    navigator.Take(chart, report);
    EXPECT_EQ(navigator.ValuesAt(chart, report.axes[0].At(2))[0].text,
              "Cell \"1\": 2.000 mL, 9.00 mV (left out: air bubble)");
}

TEST(ChartCsv, HasAllDigitsUnitsAndReasons) {
    qel::Chart chart = Stray(ChartKind::kLine);
    chart.series.push_back({.points = {{0.1, std::nan("")}}, .xAxis = 7});
    chart.series[0].points.resize(2);
    chart.series[0].points[1] = {1e300, 0.1 + 0.2};
    EXPECT_EQ(qel::ChartCsv(chart),
              "\"Volume (mL)\",\"Cell \"\"1\"\" (mV)\",\"x\",\" (mV)\"\r\n"
              "0,1,0.1,\r\n1e+300,0.30000000000000004,,\r\n");
    chart.series.pop_back();
    chart.series[0].leftOut = {{1, "air, \"bubble\""}, {0, ""}};
    const std::string text =
        "\"Volume (mL)\",\"Cell \"\"1\"\" (mV)\",\"left out\"\r\n"
        "0,1,\"left out\"\r\n1e+300,0.30000000000000004,\"air, \"\"bubble\"\"\"\r\n";
    EXPECT_EQ(qel::ChartCsv(chart), text);

    const TempFolder folder;
    chart.series[0].points.resize(50'000);  // several pieces
    EXPECT_TRUE(qel::WriteChartCsv(chart, folder.Path("a.csv").View()));
    EXPECT_EQ(folder.Read("a.csv"), qel::ChartCsv(chart));
    EXPECT_FALSE(qel::WriteChartCsv(chart, folder.Path("no/a.csv").View()));
    EXPECT_STREQ(qel::LastFailure().operation, "qel::WriteChartCsv");
}
