#include "qellib10/print/block_data.h"

#include <limits>

#include "qellib10/platform/drawing/preview_dc.h"
#include "qellib10/print/gdi_objects.h"

#include "../support/canvas.h"
#include "../support/test.h"
#include "describe.h"

namespace {

constexpr int kSmallest = std::numeric_limits<int>::min(), kLargest = std::numeric_limits<int>::max();

template <class Set> CQelPrintJobCommand Command(Set set) {
    CQelPrintJobCommand command;
    EXPECT_EQ(set(command), 1);
    return command;
}

CQelPrintJobCommand Pen(int width, COLORREF color) {
    return Command([&](auto& command) { return command.SetPen(PS_SOLID, width, color); });
}

CQelPrintJobCommand Region(int x1, int y1, int x2, int y2) {
    return Command([&](auto& command) { return command.SetRgn(x1, y1, x2, y2); });
}

CQelPrintJobCommand Line(int x1, int y1, int x2, int y2) {
    return Command([&](auto& command) { return command.SetLine(x1, y1, x2, y2); });
}

CQelPrintJobBlockData Block(std::initializer_list<CQelPrintJobCommand> commands) {
    CQelPrintJobBlockData block;
    for (const auto& command : commands) block.AddCommand(command);
    return block;
}

// The ink of a text in a box of 200 x 60 at 10, 5.
CRect InkOfText(int style, int width = 200, int height = 60, const char* text = "Hill") {
    Canvas canvas(240, 80);
    CQelPrintJobCommand command;
    command.SetText(10, 5, "Arial", 90, 0, text, style, width, height);
    CGDIObjects objects;
    EXPECT_EQ(command.Draw(&canvas.dc, 0, 0, &objects), 1);
    return canvas.Ink();
}

}  // namespace

TEST(PrintCommand, ASetterLeavesTheOtherFields) {
    CQelPrintJobCommand command;
    EXPECT_EQ(Describe(command), "0:");
    command.SetArc(1, 2, 3, 4, 5, 6, 7, 8);
    command.SetCircle(-1, 9, 10);
    command.SetPen(PS_DOT, 11, 0xFF000001);
    EXPECT_EQ(Describe(command), "7: x1=-1 y1=9 x2=3 y2=4 x3=5 y3=6 x4=7 y4=8 r=10 w=11 s=2 c=4278190081");
    command.SetText(1, 2, "Arial", 90, 3, "text", 4, -1, -1);
    command.SetText(1, 2, nullptr, 0, 0, nullptr, 0, 0, 0);
    EXPECT_EQ(Describe(command), "2: x1=1 y1=2 x3=5 y3=6 x4=7 y4=8 r=10 w=11") << "the font is cleared first";
    command.SetText(0, 0, "1234567890123456789012345678901234", 0, 0, "", 0, 0, 0);
    EXPECT_STREQ(command.GetFont().lfFaceName, "1234567890123456789012345678901");
    command.SetText(0, 0, "123456789012345678901234567890\x93\x48", 0, 0, "", 0, 0, 0);
    command.SetText(0, 0, command.GetFont().lfFaceName, 0, 0, "", 0, 0, 0);
    EXPECT_STREQ(command.GetFont().lfFaceName, "123456789012345678901234567890") << "no half character";
    EXPECT_EQ(command.Initialize(), 1);
    EXPECT_EQ(Describe(command), "0:");
}

TEST(PrintCommand, DrawsItsKindShifted) {
    using Setter = int (*)(CQelPrintJobCommand&);
    for (const auto& [set, ink] : Cases<Setter, CRect>{
             {[](auto& c) { return c.SetLine(1, 1, 6, 1); }, {11, 21, 16, 22}},
             {[](auto& c) { return c.SetLineTo(5, -20); }, {0, 0, 15, 1}},  // from 0,0, which is not shifted
             {[](auto& c) { return c.SetRectangle(0, 0, 8, 6); }, {10, 20, 18, 26}},
             {[](auto& c) { return c.SetArc(0, 0, 8, 6, 0, 0, 0, 0); }, {10, 20, 18, 26}},
             {[](auto& c) { return c.SetRectangle(kSmallest, kSmallest, -4, -14); }, {0, 0, 6, 6}},
             {[](auto& c) { return c.SetRectangle(-4, -14, kLargest, kLargest); }, {0, 0, 6, 6}},  // the sum wraps
             {[](auto& c) { return c.SetText(kSmallest, 0, "", 90, 0, "A", 0x14, -10, kSmallest); }, {}},
             {[](auto& c) { return c.SetMoveTo(1, 1); }, {}},
             {[](auto& c) { return c.SetCircle(9, 9, 5); }, {}},
             {[](auto& c) { return c.SetUnit(2); }, {}}}) {
        const CQelPrintJobCommand command = Command(set);
        SCOPED_TRACE(Describe(command));
        Canvas canvas;
        EXPECT_EQ(command.Draw(&canvas.dc, 10, 20, nullptr), 1);
        ExpectBox(canvas.Ink(), ink);
        EXPECT_EQ(command.Draw(nullptr, 0, 0, nullptr), 1);
    }
}

TEST(PrintCommand, TextIsAlignedAndBrokenByItsStyle) {
    const CRect left = InkOfText(1), center = InkOfText(2), right = InkOfText(4);
    EXPECT_NEAR(left.left, 10, 2);
    EXPECT_NEAR(center.left + center.right, 2 * 110, 3);
    EXPECT_NEAR(right.right, 210, 2);
    for (const int other : {0, 3, 0x108}) ExpectBox(InkOfText(other), left);

    const CRect middle = InkOfText(0x12);
    EXPECT_EQ(middle.left, center.left);
    EXPECT_NEAR(middle.top + middle.bottom, 2 * 35, 4);
    EXPECT_GT(InkOfText(0x21, 30, 60, "Hill Hill").Height(), left.Height() + 8) << "broken between words";
    EXPECT_LE(InkOfText(0x21, 12, 60, "HillHillHill").right, 22) << "cut by the box";
    EXPECT_GT(InkOfText(0x61, 12, 60, "HillHill").Height(), left.Height() + 8) << "broken within the word";
    for (const auto& [width, height] : Cases<int, int>{
             {-1, 60},
             {200, -1},
         })
        ExpectBox(InkOfText(0x14, width, height), left);
    ExpectBox(InkOfText(1, 0, 0), {});
    EXPECT_GT(InkOfText(1, 200, 60, "A&B").Width(), InkOfText(1, 200, 60, "AB").Width() + 4) << "no prefix";
}

TEST(PrintCommand, TextLeavesFontAndColorAsTheyWere) {
    Canvas canvas;
    CFont font;
    font.CreatePointFont(200, "Arial", &canvas.dc);
    canvas.dc.SelectObject(&font);
    canvas.dc.SetTextColor(kRed);
    CQelPrintJobCommand command;
    command.SetText(0, 0, "Arial", 90, 1, "A", 1, -1, -1);
    command.Draw(&canvas.dc, 0, 0, nullptr);
    EXPECT_EQ(canvas.dc.GetTextColor(), kRed);
    EXPECT_EQ(canvas.dc.SelectObject(&font), &font);
}

TEST(PrintBlock, ThePenLastsUntilTheNextOne) {
    Canvas canvas;
    CPen own(PS_SOLID, 1, RGB(0, 0, 255));
    canvas.dc.SelectObject(&own);
    CGDIObjects objects;
    Pen(1, kRed).Draw(&canvas.dc, 0, 0, &objects);
    Line(0, 0, 5, 0).Draw(&canvas.dc, 0, 0, &objects);
    Pen(1, 0).Draw(&canvas.dc, 0, 0, &objects);
    Line(0, 1, 5, 1).Draw(&canvas.dc, 0, 0, &objects);
    EXPECT_EQ(canvas.Row(0, 0, 6), "rrrrr.");
    EXPECT_EQ(canvas.Row(1, 0, 6), "#####.");
    EXPECT_NE(canvas.dc.SelectObject(&own), &own);

    Block({Pen(3, kRed)}).DrawCommand(&canvas.dc);
    canvas.dc.MoveTo(5, 10);
    canvas.dc.LineTo(10, 10);
    EXPECT_EQ(canvas.At(7, 9), kRed) << "the last pen stays, although its object has gone";
}

TEST(PrintBlock, FourEqualNumbersEndTheClip) {
    const CQelPrintJobCommand line = Line(-30, 5, 40, 5);
    for (const auto& [x, y, end, ink] : Cases<int, int, CQelPrintJobCommand, CRect>{
             {0, 0, Region(0, 0, 0, 0), {0, 5, 40, 6}},
             {0, 0, Region(7, 7, 7, 7), {0, 5, 40, 6}},
             {3, 3, Region(7, 7, 7, 7), {0, 8, 40, 9}},
             {10, 20, Region(0, 0, 0, 0), {}},              // 10, 20, 10, 20 is a clip, without area
             {5, 2, Region(0, 3, 0, 3), {0, 7, 40, 8}}}) {  // ends it because of the offset
        CQelPrintJobBlockData block = Block({Region(1, 1, 9, 9), end, line});
        block.SetOffset(x, y);
        SCOPED_TRACE(Describe(end));
        Canvas canvas;
        EXPECT_EQ(block.DrawCommand(&canvas.dc), 1);
        ExpectBox(canvas.Ink(), ink);
    }
}

TEST(PrintBlock, ClipsInDeviceUnitsAndWholeOnAPreview) {
    Canvas canvas, printer;
    canvas.dc.SetViewportOrg(3, 2);
    const CQelPrintJobBlockData block = Block({Region(2, 2, 12, 10), Line(-30, 4, 40, 4)});
    block.DrawCommand(&canvas.dc);
    ExpectBox(canvas.Ink(), {5, 6, 15, 7});

    Canvas screen;
    CPreviewDC preview;
    preview.SetOutputDC(screen.dc);
    preview.SetAttribDC(printer.dc);
    preview.SetTopLeftOffset({3, 2});
    preview.SetScaleRatio(1, 2);
    block.DrawCommand(&preview);
    screen.dc.SetMapMode(MM_TEXT);
    screen.dc.SetViewportOrg(0, 0);
    ExpectBox(screen.Ink(), {4, 4, 10, 5});  // 1 to 6, and one more
}

TEST(PrintBlock, CommandsAreReadInOrderAndDrawnAsOftenAsNeeded) {
    CQelPrintJobBlockData block;
    CQelPrintJobCommand out = Line(1, 2, 3, 4);
    EXPECT_EQ(block.GetNextCommand(out), 0);
    EXPECT_EQ(Describe(out), "5: x1=1 y1=2 x2=3 y2=4") << "left as it was";

    CQelPrintJobCommand text = Command([](auto& command) {
        return command.SetText(kSmallest, kLargest, "\x93\x48", -5, 0xFFFFFFFF, " \x93\x48\r\n", -1, -1, -1);
    });
    CQelPrintJobCommand other = text;
    other.SetArc(1, 2, 3, 4, 5, 6, 7, 8);
    const std::vector<std::string> all = {Describe(CQelPrintJobCommand()), Describe(text), Describe(other),
                                          Describe(Pen(3, kRed)), Describe(text)};
    block = Block({CQelPrintJobCommand(), text, other, Pen(3, kRed), text});
    EXPECT_EQ(block.GetNextCommand(out), 1);
    Canvas canvas;
    block.DrawCommand(&canvas.dc);
    EXPECT_EQ(block.GetNextCommand(out), 1);
    EXPECT_EQ(Describe(out), Describe(text)) << "drawing does not move the cursor";
    EXPECT_EQ(Describe(block), all);
    block.AddCommand(text);
    EXPECT_EQ(block.GetNextCommand(out), 0) << "at the end until it is put back";

    const CQelPrintJobBlockData& itself = block;
    block = itself;
    EXPECT_EQ(block.GetCommandCount(), 6);
    EXPECT_EQ(block.Initialize(), 1);
    EXPECT_EQ(block.GetCommandCount(), 0);
}

TEST(PrintBlock, ACopyHasNoOffset) {
    CQelPrintJobBlockData block = Block({Line(0, 0, 5, 0)}), assigned;
    block.SetOffset(10, 10);
    assigned.SetOffset(1, 2);
    assigned = block;
    Canvas first, second;
    CQelPrintJobBlockData(block).DrawCommand(&first.dc);
    assigned.DrawCommand(&second.dc);
    ExpectBox(first.Ink(), {0, 0, 5, 1});
    ExpectBox(second.Ink(), {1, 2, 6, 3});
}
