#include "qellib10/graph/qel_graph.h"

#include <cmath>
#include <limits>
#include <random>

#include "qellib10/print/queue_data.h"

#include "../support/canvas.h"
#include "../support/test.h"
#include "open_graph.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kMost = std::numeric_limits<int>::max(), kLeast = std::numeric_limits<int>::min();

}  // namespace

TEST(QelGraph, IndicesOutsideTheSeriesAreRefused) {
    OpenGraph graph;
    CAxisStyle axis;
    graph.AddData(511, 1, 2);
    graph.SetLineGraphStyle(511, {kRed, PS_DASH, 3});
    for (const int bad : {-1, 512, kMost, kLeast}) {
        EXPECT_EQ(Line({graph.SetGraphViewMode(bad, 1), graph.AddData(bad, 1, 1), graph.SetXRangeStyle(bad, axis)}),
                  "0 0 0");
        EXPECT_EQ(Line({graph.GetGraphViewMode(bad), graph.GetYRangeStyle(bad, &axis), graph.GetGraphPlotflg(bad)}),
                  "-1 -1 -1");
        EXPECT_TRUE(graph.GetLineGraphStyle(bad) == CLineGraphStyle());
        EXPECT_EQ(Line({graph.LineDraw(nullptr, bad), graph.MarkDraw(nullptr, bad, 0, 0, 0, 0, 0, nullptr)}), "0 0");
        EXPECT_EQ(graph.InitializeParameter(bad), bad < 0);
        EXPECT_EQ(graph.InitializeData(bad), bad < 0);
    }
    EXPECT_EQ(Line({graph.SetXMinRange(511, -5), graph.SetYLabelViewMode(511, 4), graph.SetGraphPlotflg(511, 1)}),
              "1 1 1");
    EXPECT_EQ(graph.GetXRangeStyle(511, nullptr), -1);
    EXPECT_EQ(graph.InitializeParameter(511), 1);
    EXPECT_EQ(graph.GetXRangeStyle(511, &axis), 1);
    EXPECT_EQ(Line({axis.GetViewMode(), axis.GetMinRange(), axis.GetMaxRange()}), "2 0 100");
    graph.GetYRangeStyle(511, &axis);
    EXPECT_EQ(axis.GetViewMode(), 3);
    EXPECT_EQ(Line({graph.GetGraphViewMode(511), graph.GetGraphPlotflg(511)}), "1 1");
    EXPECT_TRUE(graph.GetLineGraphStyle(511) == CLineGraphStyle(kRed, PS_DASH, 3));  // pens stay

    graph.SetDivX(3);
    EXPECT_EQ(graph.InitializeParameter(-1), 1);
    EXPECT_EQ(Line({graph.GetGraphViewMode(0), graph.GetGraphViewMode(511)}), "1 0");
    EXPECT_EQ(Line({graph.GetDivX(), graph.GetLeftMargin(), graph.GetLabelSpaceY()}), "10 5 3");
    EXPECT_EQ(Line({OpenGraph(1).GetLeftMargin(), OpenGraph(1).GetTopMargin()}), "20 100");
}

TEST(QelGraph, ValuesFarOutsideTheRangeKeepTheirSideWithinSixteenBits) {
    OpenGraph graph;
    graph.m_rectDrawArea = {10, 20, 210, 120};
    graph.SetXMinRange(1, -10);  // 1 is reversed, 2 has equal ends
    graph.SetXMaxRange(1, -20);
    graph.SetYMaxRange(2, 0);
    for (const auto& [series, value, x, y] : Cases<int, double, int, int>{
             {0, 0, 0, 100},
             {0, 99.9, 199, 0},
             {0, 100, 200, 0},
             {0, 1e9, 65530, -65530},
             {0, NAN, -65530, -65530},
             {0, kInfinity, 65530, -65530},
             {1, -10, 0, 110},
             {1, -20, -200, 120},
             {2, 0, 0, 0},
             {2, 1e-9, 0, -65530},
         }) {
        EXPECT_EQ(graph.DataToXPixel(value, series), x) << series << ' ' << value;
        EXPECT_EQ(graph.DataToYPixel(value, series), y) << series << ' ' << value;
    }
    double x = 7, y = 7;
    EXPECT_EQ(graph.GetValueFromPos(0, 10, 20, &x, &y), 1);
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 100);
    EXPECT_EQ(graph.GetValueFromPos(0, 209, 119, &x, nullptr), 1);
    EXPECT_EQ(x, 99.5);
    EXPECT_EQ(Line({graph.GetValueFromPos(0, 210, 20, &x, &y), graph.GetValueFromPos(0, 10, 120, &x, &y)}), "0 0");

    OpenGraph upward(1);
    upward.m_rectDrawArea = {10, -20, 210, -120};
    EXPECT_EQ(upward.DataToYPixel(25, 0), 25);
    EXPECT_EQ(Line({upward.GetValueFromPos(0, 10, -120, &x, &y), upward.GetValueFromPos(0, 10, -20, &x, &y)}), "0 1");
    EXPECT_EQ(y, 100);
    OpenGraph plain(2);
    EXPECT_EQ(Line({plain.DataToXPixel(12.7, 0), plain.DataToYPixel(-12.7, 0)}), "12 -12");
    EXPECT_EQ(plain.GetValueFromPos(0, 0, 0, &x, &y), 0);  // no area yet
}

TEST(QelGraph, TheAreaIsWhatTextsAndMarginsLeave) {
    Canvas canvas(400, 300);
    OpenGraph graph;
    graph.GetDrawArea(&canvas.dc, 100, 1000);
    ExpectBox(graph.m_rectDrawArea, {108, 1008, 492, 1292});
    graph.SetXDimStr(0, "\x93\x48\x92\xe8\x97\xca mL");
    CFont font;
    font.CreatePointFont(0, "", &canvas.dc);
    canvas.dc.SelectObject(&font);
    const CSize number = canvas.dc.GetTextExtent(" 100.0"),
                dim = canvas.dc.GetTextExtent("\x93\x48\x92\xe8\x97\xca mL");
    graph.SetXLabelViewMode(0, 2);
    graph.SetYLabelViewMode(0, 4);
    graph.SetXLabelViewMode(9, 4);  // shares the space of the wider one
    graph.SetXDimStr(9, "\x93\x48\x92\xe8\x97\xca mL");
    graph.GetDrawArea(&canvas.dc, 0, 0);
    ExpectBox(graph.m_rectDrawArea, {8, 8, 392 - std::max(number.cx, dim.cx), 292 - number.cy});

    for (const int mode : {0, 1}) {
        OpenGraph square(mode);
        square.SetDrawSizeStyle(1);
        square.SetDrawSize(mode == 0 ? -416 : 550, mode == 0 ? 316 : 560);
        square.GetDrawArea(&canvas.dc, 0, 0);
        ExpectBox(square.m_rectDrawArea, mode == 0 ? CRect(58, 8, 358, 308) : CRect(85, -130, 385, -430));
    }
}

TEST(QelGraph, OutlineAndPointsOnItAreWhole) {
    Canvas canvas(400, 300);
    OpenGraph graph;
    graph.SetFrameStyle({kRed, PS_SOLID, 1});
    graph.AddData(0, 100, 0);
    graph.AddData(0, 100, 50);
    graph.SetDivX(4);
    graph.SetDivY(1);
    EXPECT_EQ(graph.GraphDraw(&canvas.dc, 0, 0), 1);
    // The curve covers the lower half of the right edge, its end left out, and grid lines begin on the upper edge.
    EXPECT_EQ(canvas.Count(kRed), 2 * (384 + 284) - 142 - 3);
    EXPECT_EQ(canvas.Count(0), 142 + 3 * 284);
    EXPECT_EQ(canvas.dc.GetPixel(392, 292), 0u);
    EXPECT_EQ(canvas.dc.GetPixel(104, 292), kRed);
    RECT clip;
    canvas.dc.GetClipBox(&clip);
    ExpectBox(clip, {0, 0, 400, 300});
}

TEST(QelGraph, AnOutlineOfAnyPenIsWholeAndTheGridStaysWithinTheArea) {
    for (int width = -9; width <= 9; ++width) {
        SCOPED_TRACE(width);
        Canvas drawn(60, 50), whole(60, 50), replayed(60, 50), grid(60, 50);
        OpenGraph graph;
        graph.SetFrameStyle({kRed, PS_SOLID, width});
        graph.SetDivX(0);
        graph.SetDivY(0);
        CQelPrintJobQueueData job;
        graph.GetPrintJob(&job, {0, 0, 60, 50}, &drawn.dc);
        job.GetBlock().DrawCommand(&replayed.dc);
        const CRect area = graph.m_rectDrawArea;
        DrawOutline(whole.dc, area, width);
        EXPECT_TRUE(drawn.Pixels() == whole.Pixels());
        EXPECT_TRUE(replayed.Pixels() == whole.Pixels());

        graph.SetFrameStyle({0, PS_NULL, width});
        graph.SetAxisStyle({kRed, PS_SOLID, width});
        graph.SetDivX(3);
        graph.SetDivY(2);
        graph.GraphDraw(&grid.dc, 0, 0);
        EXPECT_EQ(grid.Ink().left, area.left);
        EXPECT_EQ(grid.Ink().top, area.top);
        EXPECT_LE(grid.Ink().right, area.right + 1);
        EXPECT_LE(grid.Ink().bottom, area.bottom + 1);
    }
}

TEST(QelGraph, TextsLeaveAWideOutlineWhole) {
    for (int width = 2; width <= 9; ++width) {
        SCOPED_TRACE(width);
        Canvas drawn(200, 150), whole(200, 150);
        OpenGraph graph;
        graph.SetDrawSize(200, 150);
        graph.SetFrameStyle({kRed, PS_SOLID, width});
        for (int series = 0; series < 2; ++series) {
            graph.SetXLabelViewMode(series, 1 + series);
            graph.SetYLabelViewMode(series, 3 + series);
            graph.SetXDimStr(series, "mL");
            graph.SetYDimStr(series, "mV");
        }
        graph.SetDivX(0);
        graph.SetDivY(0);
        graph.GraphDraw(&drawn.dc, 0, 0);
        DrawOutline(whole.dc, graph.m_rectDrawArea, width);
        int missing = 0, black = 0;
        for (int y = 0; y < 150; ++y) {
            for (int x = 0; x < 200; ++x) {
                missing += whole.At(x, y) == kRed && drawn.At(x, y) != kRed ? 1 : 0;
                black += drawn.At(x, y) == 0 ? 1 : 0;
            }
        }
        EXPECT_EQ(missing, 0);
        EXPECT_GT(black, 100);  // the texts
    }
}

TEST(QelGraph, ALongLineHasThePixelsOfAllItsPoints) {
    std::mt19937 random(7);
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    for (int round = 0; round < 600; ++round) {
        Canvas drawn(60, 40), whole(60, 40);
        OpenGraph graph;
        graph.SetDrawSize(60, 40);
        const int penStyle = below(7), penWidth = round % 2 == 0 ? 1 : below(10);
        graph.SetLineGraphStyle(0, {kRed, penStyle, penWidth});
        CPen pen(penStyle, penWidth, kRed);
        whole.dc.SelectObject(&pen);
        for (Canvas* const canvas : {&drawn, &whole}) {
            canvas->dc.SetBkMode(round % 4 < 2 ? OPAQUE : TRANSPARENT);
            canvas->dc.SetBkColor(0);
        }
        graph.GetDrawArea(&drawn.dc, 0, 0);
        const CRect area = graph.m_rectDrawArea;
        CRgn region;
        region.CreateRectRgn(area.left, area.top, area.right + 1, area.bottom + 1);
        whole.dc.SelectClipRgn(&region);
        const int columns = 1 + below(12), rows = 1 + below(25), count = 2 + below(round % 5 == 0 ? 2000 : 120);
        const int trace = round % 3;  // a line, and both recorders
        bool isDown = false;
        double column = 0;
        for (int i = 0; i < count; ++i) {
            if (below(1 + round % 40) == 0) column = below(columns) * 4.0;
            const double x = column + below(100) * 0.01, y = below(40) == 0 ? kInfinity : below(rows) * 5.0 - 5;
            const bool isGap = below(30) == 0;
            graph.AddData(0, isGap ? NAN : x, y);
            const int px = trace == 2 ? area.right - graph.DataToXPixel(x, 0) : area.left + graph.DataToXPixel(x, 0);
            const int py = area.top + graph.DataToYPixel(y, 0);
            if (!isGap && isDown && trace != 0) whole.dc.LineTo(px, whole.dc.GetCurrentPosition().y);
            whole.dc.GetPixel(0, 0);  // each line is drawn by itself
            if (!isGap && isDown) whole.dc.LineTo(px, py);
            if (!isGap && !isDown) whole.dc.MoveTo(px, py);
            isDown = !isGap;
        }
        EXPECT_EQ(trace == 0 ? graph.LineDraw(&drawn.dc, 0) : graph.RecorderDrawX(&drawn.dc, 0, trace - 1), 1);
        ASSERT_TRUE(drawn.Pixels() == whole.Pixels()) << round << " style " << penStyle << " width " << penWidth;
    }
}

TEST(QelGraph, BarsMarksAndCrossHaveTheirPixels) {
    Canvas canvas(400, 300);
    OpenGraph graph;
    graph.SetDrawSize(116, 116);  // a unit per pixel
    graph.GetDrawArea(&canvas.dc, 0, 0);
    EXPECT_EQ(graph.BarDraw(&canvas.dc, 0), 1);  // without points
    CBarGraphStyle bar;
    bar.SetLineColor(kRed);
    bar.SetBarBrush({BS_SOLID, RGB(0, 0, 255), 0});
    bar.SetBarWidth(5);
    graph.SetBarGraphStyle(0, bar);
    graph.AddData(0, 50, 40);
    graph.AddData(0, 60, NAN);
    EXPECT_EQ(graph.BarDraw(&canvas.dc, 0), 0);
    EXPECT_EQ(canvas.Count(kRed), 2 * 5 + 2 * 38);
    EXPECT_EQ(canvas.Count(RGB(0, 0, 255)), 3 * 38);
    EXPECT_EQ(canvas.dc.GetPixel(56, 68), kRed);

    CRect box;
    EXPECT_EQ(graph.MarkDraw(&canvas.dc, 0, 20, 80, 2, RGB(0, 255, 0), 4, &box), 1);
    ExpectBox(box, {24, 32, 32, 24});
    EXPECT_EQ(canvas.Count(RGB(0, 255, 0)), 28);
    EXPECT_EQ(graph.MarkDraw(&canvas.dc, 0, 20, NAN, 1, 0, 4, nullptr), 1);
    EXPECT_EQ(canvas.Count(0), 0);
    EXPECT_EQ(graph.FreeLineDraw(&canvas.dc, 0, 0, 90, 200, 90, 0, 1), 1);
    EXPECT_EQ(canvas.Count(0), 101);
    EXPECT_EQ(graph.FitLineDraw(&canvas.dc, 0, -50, 200, 95, 0, 0, 0, 0, 0, RGB(9, 9, 9), 1), 1);
    EXPECT_EQ(canvas.Count(RGB(9, 9, 9)), 101);

    const auto before = canvas.Pixels();
    EXPECT_EQ(graph.DrawCrossPoint(&canvas.dc, 0, 70, 10), 0);
    EXPECT_EQ(canvas.Count(0), 101 - 1 + 100 + 100 - 2 * 2 - 5);
    EXPECT_EQ(canvas.dc.GetPixel(20, 97), 0u);
    EXPECT_EQ(canvas.dc.GetPixel(78, 97), kWhite);
    graph.DrawCrossPoint(&canvas.dc, 0, 70, 10);
    EXPECT_TRUE(canvas.Pixels() == before);
}

TEST(QelGraph, IsDrawnWhateverItsNumbersAre) {
    Canvas canvas(50, 40);
    for (const double end : {double(NAN), kInfinity, 0.0, 1e308}) {
        for (const int extreme : {kLeast, -1, 0, 7, kMost}) {
            for (const int mode : {0, 1, 2}) {
                OpenGraph graph(mode);
                for (int series = 0; series < 6; ++series) {
                    for (const double x : {double(NAN), kInfinity, -kInfinity, 1e308, -1e308, 0.0}) {
                        graph.AddData(series, x, -x);
                        graph.AddData(series, 1, x);
                    }
                    graph.SetXMinRange(series, -end);
                    graph.SetXMaxRange(series, end);
                    graph.SetYMinRange(series, end);
                    graph.SetGraphViewMode(series, series);
                    graph.SetGraphPlotflg(series, 1);
                    graph.SetXLabelViewMode(series, series);
                }
                graph.SetDrawSize(extreme, extreme);
                graph.SetDrawSizeStyle(extreme & 1);
                graph.SetDivX(extreme);
                graph.SetLabelSpaceX(extreme);
                graph.SetRightMargin(extreme);
                CBarGraphStyle bar;
                bar.SetBarWidth(extreme);
                graph.SetBarGraphStyle(2, bar);
                EXPECT_EQ(graph.GraphDraw(&canvas.dc, extreme, extreme), 1);  // of the unknown view mode 5
                graph.MarkDraw(&canvas.dc, 0, end, end, extreme, 0, extreme, nullptr);
                graph.FitLineDraw(&canvas.dc, 0, -end, end, end, 1, 1, 1, 1, 1, 0, extreme);
                graph.FreeLineDraw(&canvas.dc, 0, end, 0, -end, 1, 0, 1);
                graph.DrawCrossPoint(&canvas.dc, 0, end, 0);
            }
        }
    }
    OpenGraph hidden;
    hidden.SetGraphViewMode(0, 0);
    EXPECT_EQ(hidden.GraphDraw(&canvas.dc, 3, 17), 17);
    EXPECT_EQ(hidden.GraphDraw(nullptr, 3, 18), 18);
}
