#include <array>
#include <limits>

#include "qellib10/print/queue_data.h"

#include "../support/canvas.h"
#include "../support/code_page_scope.h"
#include "../support/test.h"
#include "describe.h"

namespace {

const double kGap = std::numeric_limits<double>::quiet_NaN();
constexpr std::array kDashes = {4.0, 2.5};
const std::array<qel::ShapePoint, 6> kCorners = {{{10, 10.25}, {90, 12}, {kGap, 0}, {-3, 40}, {60.5, 70}, {1e300, 50}}};

CQelPrintJobCommand Shape() {
    CQelPrintJobCommand command;
    command.SetShape(kCorners, {.fill = RGB(250, 200, 0),
                                .stroke = RGB(0, 0, 200),
                                .strokeWidth = 2.5,
                                .dashes = kDashes,
                                .isRound = true,
                                .opacity = 0.5});
    return command;
}

CQelPrintJobCommand Label() {
    CQelPrintJobCommand command;
    command.SetLabel({20.25, 70}, "10³ µmol/L ﬁ 濃度", {.face = "Liberation Sans", .points = 8.5, .quarterTurns = 1});
    return command;
}

TEST(ShapeCommand, OfAJobFileIsTheOneThatWasRecorded) {
    const TempFolder folder;
    for (const unsigned page : {932U, 1252U, 65001U}) {
        const CodePageScope scope(page);
        CQelPrintJobQueueData job, again;
        job.AddCommand(Shape());
        job.AddCommand(Label());
        ASSERT_EQ(job.SaveJobFile(folder.Path("shapes.job")), 1);
        ASSERT_EQ(again.LoadJobFile(folder.Path("shapes.job")), 1);
        const std::vector<std::string> commands = {
            "11: x1=51450 x2=50 x3=400 y3=250 w=250 s=26 c=13107200 "
            "t=10,10.25 90,12 - -3,40 60.5,70 21474836.47,50",
            "12: x1=2025 y1=7000 s=1 h=85 f=Liberation Sans t=10³ µmol/L ﬁ 濃度"};
        EXPECT_EQ(Describe(again.GetBlock()), commands) << page;
    }
}

// A chart is seen on the screen first and printed from its job later.
TEST(ShapeCommand, DrawsThePixelsOfTheShape) {
    Canvas direct(120, 90), replayed(120, 90);
    qel::DrawShape(direct.dc, kCorners,
                   {.fill = RGB(250, 200, 0),
                    .stroke = RGB(0, 0, 200),
                    .strokeWidth = 2.5,
                    .dashes = kDashes,
                    .isRound = true,
                    .opacity = 0.5});
    qel::DrawLabel(direct.dc, {20.25, 70}, "10³ µmol/L ﬁ 濃度",
                   {.face = "Liberation Sans", .points = 8.5, .quarterTurns = 1}, 96);
    Shape().Draw(&replayed.dc, 0, 0, nullptr);
    Label().Draw(&replayed.dc, 0, 0, nullptr);
    EXPECT_TRUE(direct.Pixels() == replayed.Pixels());
    ExpectBox(direct.Ink(), {0, 0, 120, 72});
}

TEST(ShapeCommand, DrawsNothingOfWhatCannotBeRead) {
    struct {
        const char* attributes;
        const char* corners;
    } const kCases[] = {
        {"style=\"16\"", ""},
        {"style=\"16\" width=\"100\"", "1,1"},
        {"style=\"16\" width=\"100\"", "a,b 5 7,, 1e2,4 9,9x"},
        {"style=\"0\" width=\"100\"", "0,0 50,50"},
        {"style=\"8\" opacity=\"-5\"", "0,0 50,50 0,50"},
    };
    const TempFolder folder;
    for (const auto& each : kCases) {
        folder.Write("odd.job", std::string("<printjob><commands><shape ") + each.attributes + ">" + each.corners +
                                    "</shape></commands></printjob>");
        CQelPrintJobQueueData job;
        ASSERT_EQ(job.LoadJobFile(folder.Path("odd.job")), 1);
        Canvas canvas(60, 60);
        job.GetBlock().DrawCommand(&canvas.dc);
        EXPECT_TRUE(canvas.Ink().IsRectEmpty()) << each.corners;
    }
}

}  // namespace
