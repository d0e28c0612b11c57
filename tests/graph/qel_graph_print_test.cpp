#include <cairo.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>

#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/preview_dc.h"
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

// The colours outside the middle of each side, so many pixels away.
std::string AroundMiddles(Canvas& canvas, const CRect& area, int away) {
    const int x = (area.left + area.right) / 2, y = (area.top + area.bottom) / 2;
    return Line({canvas.At(x, area.top - away), canvas.At(x, area.bottom + away), canvas.At(area.left - away, y),
                 canvas.At(area.right + away, y)});
}

/// A page as a program shows it, in grey.
class ShownPage {
public:
    static constexpr int kDotsPerInch = 100;

    explicit ShownPage(const std::string& png)
        : m_picture(cairo_image_surface_create_from_png(png.c_str()), cairo_surface_destroy) {}

    int Width() const { return cairo_image_surface_get_width(m_picture.get()); }
    /// Whether there is ink all along the edge of @p area, @p outward from it, in dots of 600 per inch: on the edge
    /// itself up to two dots of the page away.
    bool HasEdge(const CRect& area, LONG CRect::*edge, int outward) const {
        const bool isUpright = edge == &CRect::left || edge == &CRect::right;
        const int tolerance = outward == 0 ? 2 : 0;
        const LONG at = area.*edge + (edge == &CRect::left || edge == &CRect::top ? -outward : outward);
        const LONG from = isUpright ? area.top : area.left, to = isUpright ? area.bottom : area.right;
        constexpr LONG kCorner = 9;  // programs move lines to whole dots of theirs
        for (LONG along = from + kCorner; along <= to - kCorner; along += 3) {
            const int x = Shown(isUpright ? at : along), y = Shown(isUpright ? along : at);
            int darkest = 255;
            for (int across = -tolerance; across <= tolerance; ++across)
                darkest = std::min(darkest, isUpright ? Grey(x + across, y) : Grey(x, y + across));
            if (darkest > 0xE0) return false;
        }
        return true;
    }

private:
    static int Shown(LONG dot) { return static_cast<int>((dot + 0.5) * kDotsPerInch / 600); }
    int Grey(int x, int y) const {
        const int stride = cairo_image_surface_get_stride(m_picture.get());
        const bool isGrey = cairo_image_surface_get_format(m_picture.get()) == CAIRO_FORMAT_A8;
        return cairo_image_surface_get_data(m_picture.get())[std::ptrdiff_t{y} * stride + (isGrey ? x : 4 * x)];
    }

    std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> m_picture;
};

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

TEST(QelGraphPrint, OutlinesAreWholeWhereverAPageIsShown) {
    const TempFolder folder;
    CDC dc;
    ASSERT_TRUE(dc.Attach(qel::CreatePdfDC(folder.Name("page.pdf").c_str(), {})));
    dc.StartDoc("outlines");
    dc.StartPage();
    // Six times a pen of one dot, since it lies differently in each dot of a screen; then those of 2 to 9 dots; then
    // wide ones, whose outer half has a dot of the screen that is all ink.
    constexpr int kThin = 6, kWide = 14, kPens = 22;
    std::vector<CRect> areas;
    std::vector<int> outward;
    for (int i = 0; i < kPens; ++i) {
        OpenGraph graph;
        const int width = i < kThin ? 1 : i < kWide ? i - kThin + 2 : 6 * (i - kWide + 4);
        graph.SetFrameStyle({0, PS_SOLID, width});
        graph.SetDivX(0);
        graph.SetDivY(0);
        graph.SetDrawSize(600 + i, 400 + i);
        graph.GraphDraw(&dc, 200 + i % 4 * 1000, 200 + i / 4 * 1000);
        areas.push_back(graph.m_rectDrawArea);
        outward.push_back(i < kWide ? 0 : width / 2 - 4);
    }
    dc.EndPage();
    ASSERT_GT(dc.EndDoc(), 0);
    const std::string pdf = folder.Posix("page.pdf").string(), png = folder.Posix("shown.png").string();
    for (const char* const program :
         {"pdftoppm -r 100 -gray -png -singlefile $PDF ${PNG%.png}",
          "pdftocairo -r 100 -gray -png -singlefile $PDF ${PNG%.png}", "gs -q -sDEVICE=pnggray -r100 -o $PNG $PDF"}) {
        SCOPED_TRACE(program);
        ASSERT_EQ(std::system(("PDF=" + pdf + "; PNG=" + png + "; " + program).c_str()), 0);
        const ShownPage page(png);
        ASSERT_NEAR(page.Width(), 827, 1);
        for (std::size_t i = 0; i < areas.size(); ++i) {
            for (LONG CRect::*const edge : {&CRect::left, &CRect::top, &CRect::right, &CRect::bottom})
                EXPECT_TRUE(page.HasEdge(areas[i], edge, outward[i])) << "outline " << i << " at " << areas[i].*edge;
        }
        std::filesystem::remove(png);
    }
}

TEST(QelGraphPrint, WideOutlinesAndCurvesAreWholeInDocumentsAndJobs) {
    const TempFolder folder;
    const auto document = [&](const char* file, const auto& draw) {
        CDC dc;
        EXPECT_TRUE(dc.Attach(qel::CreatePdfDC(folder.Name(file).c_str(), {})));
        dc.StartDoc("outline");
        dc.StartPage();
        draw(dc);
        dc.EndPage();
        EXPECT_GT(dc.EndDoc(), 0);
    };
    for (const auto& [mode, width, outside] : Cases<int, int, int>{
             {0, 20, 7},
             {1, 300, 7},
         }) {
        OpenGraph graph(mode);
        graph.SetFrameStyle({kRed, PS_SOLID, width});
        graph.SetDivX(0);
        graph.SetDivY(0);
        Canvas canvas(kWidth, kHeight);
        if (mode == 1) canvas.dc.SetMapMode(MM_TWIPS);
        CQelPrintJobQueueData job;
        graph.GetPrintJob(&job, mode == 0 ? CRect(0, 0, kWidth, kHeight) : CRect(300, 0, 3300, 2000), &canvas.dc);
        CRect area = graph.m_rectDrawArea;
        canvas.dc.LPtoDP(&area);
        canvas.dc.SetMapMode(MM_TEXT);
        EXPECT_EQ(AroundMiddles(canvas, area, outside), "255 255 255 255") << mode;
        if (mode != 0) continue;
        document("drawn.pdf", [&](CDC& dc) { graph.GraphDraw(&dc, 0, 0); });
        CQelPrintJobQueueData printed;
        document("unused.pdf", [&](CDC& dc) { graph.GetPrintJob(&printed, {0, 0, kWidth, kHeight}, &dc); });
        document("replayed.pdf", [&](CDC& dc) { printed.GetBlock().DrawCommand(&dc); });
        EXPECT_EQ(folder.Read("unused.pdf"), folder.Read("drawn.pdf"));
        EXPECT_EQ(folder.Read("replayed.pdf").size(), folder.Read("drawn.pdf").size());
    }

    Canvas screen(kWidth, kHeight);
    CDC printer;
    ASSERT_TRUE(printer.Attach(qel::CreatePdfDC(folder.Name("unused.pdf").c_str(), {})));
    CPreviewDC preview;
    preview.SetOutputDC(screen.dc);
    preview.SetAttribDC(printer);
    preview.SetTopLeftOffset({20, 10});
    preview.SetScaleRatio(1, 2);
    OpenGraph shown;
    shown.SetFrameStyle({kRed, PS_SOLID, 125});  // 10 pixels
    shown.SetDrawSize(2500, 1500);
    shown.GraphDraw(&preview, 300, 300);
    CPoint corner = shown.m_rectDrawArea.TopLeft(), opposite = shown.m_rectDrawArea.BottomRight();
    for (CPoint* const at : {&corner, &opposite}) preview.PrinterDPtoScreenDP(at);
    CRect area(corner.x, corner.y, opposite.x, opposite.y);
    area.OffsetRect(20, 10);
    screen.dc.SetMapMode(MM_TEXT);
    screen.dc.SetViewportOrg(0, 0);
    EXPECT_EQ(AroundMiddles(screen, area, 3), "255 255 255 255") << "in a preview";

    // The points of a wide curve, too: those in one column would leave other shades where edges are smoothed.
    OpenGraph curve;
    curve.SetLineGraphStyle(0, {kRed, PS_SOLID, 3});
    for (int i = 0; i < 2000; ++i) curve.AddData(0, i * 0.05, i * 37 % 100);
    CQelPrintJobQueueData recorded;  // has every point
    document("curve.pdf", [&](CDC& dc) { curve.GetPrintJob(&recorded, {0, 0, kWidth, kHeight}, &dc); });
    document("alone.pdf", [&](CDC& dc) { curve.GraphDraw(&dc, 0, 0); });
    EXPECT_EQ(folder.Read("alone.pdf"), folder.Read("curve.pdf"));

    OpenGraph graph;
    graph.SetXLabelViewMode(0, 2);
    graph.SetFrameStyle({kRed, PS_SOLID, 9});
    CQelPrintJobQueueData job;
    Canvas canvas(kWidth, kHeight);
    graph.GetPrintJob(&job, {0, 0, kWidth, kHeight}, &canvas.dc);
    const auto commands = CommandsOf(job);
    const auto first = [&](int kind) { return std::ranges::find(commands, kind, &CQelPrintJobCommand::GetKind); };
    EXPECT_LT(first(CQelPrintJobCommand::kLineTo), first(CQelPrintJobCommand::kText));
    EXPECT_LT(first(CQelPrintJobCommand::kText), first(CQelPrintJobCommand::kSetRgn))
        << "which would cut off the texts";
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

TEST(QelGraphPrint, CirclesOfALineAreSeenAtAnyResolution) {
    for (const auto& [mode, dotsPerInch, diameter] : Cases<int, int, int>{
             {0, 0, 6},
             {0, -1, 6},
             {0, 96, 6},
             {0, 600, 36},
             {0, 31, 2},
             {0, 1, 2},
             {1, 0, 60},
             {1, 720, 30},
             {1, 47, 2},
         }) {
        Canvas canvas(kWidth, kHeight);
        OpenGraph graph(mode);
        graph.SetGraphPlotflg(0, 1);
        graph.AddData(0, 50, 50);
        CQelPrintJobQueueData job;
        job.GetPageStyle().SetDpi(dotsPerInch);
        graph.GetPrintJob(&job, {0, 0, 2000, 2000}, &canvas.dc);
        const auto commands = CommandsOf(job);
        const auto circle = std::ranges::find(commands, int{CQelPrintJobCommand::kArc}, &CQelPrintJobCommand::GetKind);
        ASSERT_NE(circle, commands.end());
        EXPECT_EQ(circle->GetX2() - circle->GetX1(), diameter) << mode << " " << dotsPerInch;
    }
}

TEST(QelGraphPrint, TextsAreApartAndInsideTheDrawing) {
    std::mt19937 random(5);
    // Screens, a printer, and drawings that texts have no room in.
    const Cases<int, int, int, int> cases = {
        {400, 300, 96, 40},
        {2400, 1800, 600, 40},
        {60, 90, 96, 0},
        {150, 30, 96, 0},
    };
    for (const auto& [width, height, dotsPerInch, leastTexts] : cases) {
        CDC dc;
        ASSERT_TRUE(dc.Attach(qel::CreatePdfDC("unused", {.dotsPerInch = {dotsPerInch, dotsPerInch}})));
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
                box.right += box.Height() / 2;  // the space after it
                for (std::size_t i = 1; i < boxes.size(); ++i) EXPECT_FALSE(common.IntersectRect(box, boxes[i]));
                boxes.push_back(box);
            }
            texts = std::max(texts, static_cast<int>(boxes.size()) - 1);
        }
        EXPECT_GE(texts, leastTexts);
    }
}
