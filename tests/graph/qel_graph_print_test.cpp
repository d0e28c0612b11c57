#include <cmath>
#include <random>

#include "qellib10/platform/drawing/file_dc.h"

#include "qellib10/print/queue_data.h"

#include "../support/canvas.h"
#include "../support/test.h"
#include "open_graph.h"

namespace {

constexpr int kWidth = 300, kHeight = 200;

std::vector<CQelPrintJobCommand> CommandsOf(CQelPrintJobQueueData& job) {
    std::vector<CQelPrintJobCommand> commands;
    CQelPrintJobCommand command;
    job.GetBlock().ResetGetCommand();
    while (job.GetBlock().GetNextCommand(command)) commands.push_back(command);
    return commands;
}

/// Draws a mark with its graph, as an application's own graph does.
struct MarkedGraph : OpenGraph {
    using OpenGraph::OpenGraph;
    int GraphDraw(CDC* dc, int x, int y) override {
        const int result = OpenGraph::GraphDraw(dc, x, y);
        MarkDraw(dc, 0, 50, 50, 2, kRed, 4, nullptr);
        FitLineDraw(dc, 0, 20, 80, 5, 1, -0.01, 0, 0, 0, kRed, 1);
        return result;
    }
};

// Up to four series of any kind, with axes on all sides.
template <class Random> void Fill(OpenGraph& graph, Random& random) {
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    for (int series = 0; series < 4; ++series) {
        CAxisStyle axis;
        axis.SetViewMode(below(5));
        axis.SetDimStr("\x93\x64\x88\xca");
        axis.SetLabelColor(random() & 0xFFFFFF);
        axis.SetMinRange(below(50));
        graph.SetXRangeStyle(series, axis);
        axis.SetViewMode(below(5));
        graph.SetYRangeStyle(series, axis);
        graph.SetGraphViewMode(series, below(5));
        graph.SetGraphPlotflg(series, below(2));
        graph.SetLineGraphStyle(series, {random() & 0xFFFFFF, below(6), below(3)});
        CBarGraphStyle bar;
        bar.SetBarBrush({BS_SOLID, kWhite, 0});  // the one that a job is filled with
        graph.SetBarGraphStyle(series, bar);
        for (int i = below(300); i > 0; --i) graph.AddData(series, below(9) == 0 ? NAN : below(120) * 0.9, below(120));
    }
    graph.SetDivX(below(12));
    graph.SetDrawSizeStyle(below(2));
}

}  // namespace

TEST(QelGraphPrint, AJobDrawsWhatWasDrawnWithAndWithoutIt) {
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        const int mode = round % 4 == 0 ? 1 : 0;
        MarkedGraph graph(mode);
        Fill(graph, random);
        Canvas recorded(kWidth, kHeight), replayed(kWidth, kHeight), drawn(kWidth, kHeight);
        for (Canvas* const canvas : {&recorded, &replayed, &drawn}) {
            canvas->dc.SetMapMode(mode == 0 ? MM_TEXT : round % 8 == 0 ? MM_TWIPS : MM_LOMETRIC);
            if (mode == 0) canvas->dc.SetViewportOrg(round % 5, -round % 3);
        }
        CQelPrintJobQueueData job;
        job.GetPageStyle().SetDpi(mode == 0 ? 96 : 1440);  // marks have the size that they have on the screen
        const CRect rect = mode == 0 ? CRect(3, 2, kWidth - 3, kHeight - 2) : CRect(0, 0, 2500, 1500);
        EXPECT_EQ(graph.GetPrintJob(&job, rect, &recorded.dc), 0);
        job.GetBlock().DrawCommand(&replayed.dc);
        graph.GraphDraw(&drawn.dc, rect.left, rect.top);
        ASSERT_TRUE(recorded.Pixels() == replayed.Pixels()) << round;
        ASSERT_TRUE(recorded.Pixels() == drawn.Pixels()) << round;
    }
}

TEST(QelGraphPrint, EachPrimitiveIsACommand) {
    Canvas canvas(400, 300);
    MarkedGraph graph;
    graph.SetDivX(2);
    graph.SetDivY(0);
    for (int i = 0; i < 1000; ++i) graph.AddData(0, i * 0.01, i % 7);
    CQelPrintJobQueueData job;
    job.GetPageStyle().SetDpi(600);
    EXPECT_EQ(graph.GetPrintJob(&job, {10, 20, 410, 320}, &canvas.dc), 0);
    const auto commands = CommandsOf(job);
    ASSERT_GT(commands.size(), 1020u);
    const auto is = [&](std::size_t at, int kind, const CRect& box) {
        const CQelPrintJobCommand& command = commands[at];
        EXPECT_EQ(command.GetKind(), kind) << at;
        ExpectBox({command.GetX1(), command.GetY1(), command.GetX2(), command.GetY2()}, box);
    };
    is(0, CQelPrintJobCommand::kSetRgn, {18, 28, 403, 313});  // one unit more than the area
    is(1, CQelPrintJobCommand::kSetPen, {0, 0, 0, 0});
    is(2, CQelPrintJobCommand::kMoveTo, {18, 28, 0, 0});
    is(3, CQelPrintJobCommand::kLineTo, {18, 312, 0, 0});
    is(8, CQelPrintJobCommand::kMoveTo, {210, 28, 0, 0});
    is(10, CQelPrintJobCommand::kSetRgn, {0, 0, 0, 0});
    EXPECT_EQ(std::ranges::count(commands, int{CQelPrintJobCommand::kLineTo}, &CQelPrintJobCommand::GetKind),
              4 + 1 + 999 + 231);
    const auto mark = std::ranges::find(commands, int{CQelPrintJobCommand::kRectangle}, &CQelPrintJobCommand::GetKind);
    ExpectBox({mark->GetX1(), mark->GetY1(), mark->GetX2(), mark->GetY2()}, {185, 145, 235, 195});

    // Detached now; and without a job or a printer nothing happens.
    graph.GraphDraw(&canvas.dc, 0, 0);
    EXPECT_EQ(graph.GetPrintJob(nullptr, {}, &canvas.dc), 0);
    job.GetPageStyle().SetPrinterDevice("no such printer");
    EXPECT_EQ(graph.GetPrintJob(&job, {0, 0, 50, 50}, nullptr), 0);
    EXPECT_EQ(CommandsOf(job).size(), commands.size());
}

TEST(QelGraphPrint, TextsStandApartInsideTheDrawing) {
    std::mt19937 random(5);
    // Screens, a printer, and drawings that texts have no room in.
    const Cases<int, int, int, int> cases{{400, 300, 96, 40}, {2400, 1800, 600, 40}, {60, 90, 96, 0}, {150, 30, 96, 0}};
    for (const auto& [width, height, dotsAnInch, leastTexts] : cases) {
        CDC dc;
        ASSERT_TRUE(dc.Attach(qel::CreatePdfDC("unused", {.dotsAnInch = {dotsAnInch, dotsAnInch}})));
        CFont font;
        font.CreatePointFont(0, "", &dc);
        dc.SelectObject(&font);
        int texts = 0;
        for (int axes = 0; axes < 40; ++axes) {
            SCOPED_TRACE(width * 100 + axes);
            OpenGraph graph;
            for (int i = 0; i < axes; ++i) {
                CAxisStyle axis;
                axis.SetViewMode(1 + static_cast<int>(random() % 4));
                axis.SetDimStr(i % 3 == 0 ? "" : "mol/L");
                axis.SetStrPosition(i % 2);
                graph.SetXRangeStyle(i, axis);
            }
            CQelPrintJobQueueData job;
            graph.GetPrintJob(&job, {0, 0, width, height}, &dc);
            std::vector<CRect> boxes{graph.m_rectDrawArea};
            for (const CQelPrintJobCommand& command : CommandsOf(job)) {
                if (command.GetKind() != CQelPrintJobCommand::kText) continue;
                CRect box(POINT{command.GetX1(), command.GetY1()}, dc.GetTextExtent(command.GetText()));
                EXPECT_TRUE(box.left >= 5 && box.top >= 5 && box.right <= width - 5 && box.bottom <= height - 5);
                CRect common;
                EXPECT_FALSE(common.IntersectRect(box, boxes.front()));
                box.right += box.Height() / 2;  // the space behind it
                for (std::size_t i = 1; i < boxes.size(); ++i) EXPECT_FALSE(common.IntersectRect(box, boxes[i]));
                boxes.push_back(box);
            }
            texts = std::max(texts, static_cast<int>(boxes.size()) - 1);
        }
        EXPECT_GE(texts, leastTexts);
    }
}
