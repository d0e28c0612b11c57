#include "qellib10/print/page_style.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "qellib10/platform/printing/print_spooler.h"

#include "../support/cases.h"
#include "../support/environment_scope.h"
#include "../support/temp_folder.h"

namespace {

// No print server, and a folder for PDF.
struct PrintFolder {
    TempFolder folder;
    EnvironmentScope server{"CUPS_SERVER", folder.Posix("no.sock").c_str()};
    EnvironmentScope target{"QELLIB10_PDF_DIR", folder.Posix("out").c_str()};
};

bool IsContext(HDC dc) { return GetDeviceCaps(dc, LOGPIXELSX) != 0; }

struct Style : CQelPrintJobPageStyle {
    using CQelPrintJobPageStyle::GetDevMode;
};

// Answers as it is told to.
struct Dialog : qel::PrintDialogProvider {
    Dialog() { qel::SetPrintDialogProvider(this); }
    ~Dialog() override { qel::SetPrintDialogProvider(nullptr); }
    std::optional<qel::PrintChoice> Choose(const qel::PrintDialogRequest& request) override {
        flags = request.flags;
        return answer;
    }

    DWORD flags = 0;
    std::optional<qel::PrintChoice> answer;
};

}  // namespace

TEST(PageStyle, TakesPaperAndResolutionFromADeviceMode) {
    const PrintFolder system;
    Style style;
    const Cases<int, int, CSize, CSize> cases = {
        {9, 1, {0, 0}, {2100, 2970}},   {9, 2, {0, 0}, {2970, 2100}},   {2, 1, {0, 0}, {2150, 2783}},
        {35, 1, {0, 0}, {1760, 1250}},  {41, 2, {0, 0}, {3289, 2150}},  {26, 1, {0, 0}, {8602, 11132}},
        {9, 2, {500, 900}, {500, 900}}, {9, 1, {500, 0}, {2100, 2970}}, {13, 1, {0, 900}, {1820, 2570}},
        {1, 1, {0, 0}, {1820, 2570}},   {42, 2, {0, 0}, {2570, 1820}},  {0, 1, {0, 0}, {2570, 1820}}};
    for (const auto& [form, direction, given, expected] : cases) {
        SCOPED_TRACE(form);
        DEVMODE mode{};
        mode.dmPaperSize = static_cast<short>(form);
        mode.dmOrientation = static_cast<short>(direction);
        mode.dmPaperWidth = static_cast<short>(given.cx);
        mode.dmPaperLength = static_cast<short>(given.cy);
        style.GetDevMode(&mode, nullptr);
        EXPECT_TRUE(style.GetPaperSize() == expected) << style.GetPaperSize().cx << " x " << style.GetPaperSize().cy;
        EXPECT_EQ(style.GetPaperForm(), form);
        EXPECT_EQ(style.GetPaperDirection(), direction);
        EXPECT_EQ(style.GetDpi(), 0);
    }
    DEVMODE mode{};
    std::fill(std::begin(mode.dmDeviceName), std::end(mode.dmDeviceName), BYTE{'x'});
    CDC screen;
    screen.CreateCompatibleDC(nullptr);
    style.GetDevMode(&mode, &screen);
    EXPECT_EQ(style.GetDpi(), 96);
    EXPECT_EQ(style.GetPrinterDevice().GetLength(), CCHDEVICENAME) << "a name without its end";
    mode.dmYResolution = 300;
    mode.dmDeviceName[2] = 0;
    mode.dmDeviceName[0] = 'P', mode.dmDeviceName[1] = 'D';
    style.GetDevMode(&mode, &screen);
    EXPECT_EQ(style.GetDpi(), 300);
    EXPECT_EQ(style.GetPrinterDevice(), "PDF") << "the first that begins so";
}

TEST(PageStyle, ConvertsTowardZeroAndWraps) {
    CQelPrintJobPageStyle style;
    CRect rect(1, 2, 3, 4);
    EXPECT_EQ(style.ConvertMillimetreToPixel(rect), 0);
    EXPECT_TRUE(rect == CRect(1, 2, 3, 4));
    style.SetDpi(600);
    rect = CRect(-1, 100, -100, 254);
    EXPECT_EQ(style.ConvertMillimetreToPixel(rect), 1);
    EXPECT_TRUE(rect == CRect(-2, 236, -236, 600));
    CPoint point(0x7FFFFFFF, std::numeric_limits<int>::min());
    EXPECT_EQ(style.ConvertMillimetreToPixel(point), 1);
    EXPECT_TRUE(point == CPoint(-2, 0));
    style.SetPrintBlock({0x10000, 0x10001});
    EXPECT_EQ(style.GetPageBlocks(), 0x10000);
}

TEST(PageStyle, IsEqualInAllThatAJobFileKeeps) {
    using S = CQelPrintJobPageStyle;
    const CQelPrintJobPageStyle plain;
    const std::vector<void (*)(S&)> counts = {[](S& s) { s.SetPrinterDriverName("a"); },
                                              [](S& s) { s.SetPrinterDevice("a"); },
                                              [](S& s) { s.SetPrinterPort("a"); },
                                              [](S& s) { s.SetUnit(1); },
                                              [](S& s) { s.SetDpi(1); },
                                              [](S& s) {
                                                  s.SetPaperSize({1, 0});
                                              },
                                              [](S& s) { s.SetPaperForm(1); },
                                              [](S& s) { s.SetPaperDirection(2); },
                                              [](S& s) { s.SetTopMargin(1); },
                                              [](S& s) { s.SetBottomMargin(1); },
                                              [](S& s) { s.SetLeftMargin(1); },
                                              [](S& s) { s.SetRightMargin(1); },
                                              [](S& s) { s.SetStyleName("a"); },
                                              [](S& s) {
                                                  s.SetPrintBlock({1, 2});
                                              },
                                              [](S& s) { s.SetPrintDirection(2); },
                                              [](S& s) { s.SetStyleName(UINT{28001}); }};
    for (const auto change : counts) {
        CQelPrintJobPageStyle style;
        EXPECT_TRUE(style == plain);
        change(style);
        EXPECT_FALSE(style == plain) << &change - counts.data();
        EXPECT_TRUE(CQelPrintJobPageStyle(style) == style);
    }
    CQelPrintJobPageStyle style;
    style.SetPrnTopMargin(1), style.SetPrnBottomMargin(1), style.SetPrnLeftMargin(1), style.SetPrnRightMargin(1);
    EXPECT_TRUE(style == plain);
    style.SetPrinterDevice("D"), style.SetPrinterDriverName("d"), style.SetPaperForm(8);
    EXPECT_EQ(style.Initialize(), 1);
    EXPECT_EQ(style.GetPrinterDevice(), "D");
    EXPECT_EQ(style.GetPrinterDriverName(), "");
    EXPECT_EQ(style.GetPaperForm(), 9);
    EXPECT_EQ(style.GetPrnRightMargin(), 1);
}

TEST(PageStyle, OwnsOneContext) {
    const PrintFolder system;
    Dialog dialog;
    CQelPrintJobPageStyle style, other;
    EXPECT_EQ(style.SelectPrinter(), 0) << "cancelled";
    EXPECT_EQ(style.MovePrinterDC(other), 0);
    dialog.answer = {"PDF", std::nullopt};
    ASSERT_EQ(style.SelectPrinter(), 1);
    const HDC first = style.GetSelectedPrinterDC();
    EXPECT_TRUE(IsContext(first));
    EXPECT_EQ(style.GetPrinterDriverName(), "PDF");
    EXPECT_EQ(style.GetPrinterPort(), system.folder.Path("out"));
    EXPECT_EQ(style.GetDpi(), 600);
    EXPECT_EQ(dialog.flags & (PD_NOPAGENUMS | PD_NOSELECTION | PD_HIDEPRINTTOFILE | PD_PRINTSETUP),
              PD_NOPAGENUMS | PD_NOSELECTION | PD_HIDEPRINTTOFILE);

    style = *&style;
    EXPECT_EQ(style.MovePrinterDC(style), 1);
    EXPECT_EQ(style.GetSelectedPrinterDC(), first) << "to itself";
    ASSERT_EQ(other.SelectPrinter(), 1);
    const HDC second = other.GetSelectedPrinterDC();
    EXPECT_EQ(other.MovePrinterDC(style), 1);
    EXPECT_EQ(other.GetSelectedPrinterDC(), first);
    EXPECT_EQ(style.GetSelectedPrinterDC(), nullptr);
    EXPECT_FALSE(IsContext(second));
    EXPECT_EQ(CQelPrintJobPageStyle(other).GetSelectedPrinterDC(), nullptr);
    ASSERT_EQ(other.SelectPrinter(), 1);
    EXPECT_FALSE(IsContext(first));
    const HDC third = other.GetSelectedPrinterDC();
    style = other;
    EXPECT_EQ(style.GetSelectedPrinterDC(), nullptr);
    EXPECT_TRUE(IsContext(third));
    other = style;
    EXPECT_FALSE(IsContext(third));
    dialog.answer = {"nobody", std::nullopt};
    EXPECT_EQ(other.SelectPrinter(), 0);
    EXPECT_EQ(other.GetPrinterDevice(), "nobody");
    EXPECT_EQ(other.GetPrinterDC(), nullptr);
}

TEST(PageStyle, MakesAContextWithItsForm) {
    const PrintFolder system;
    CQelPrintJobPageStyle style;
    style.SetPrinterDevice("PDF");
    style.SetPaperForm(13);
    style.SetPaperDirection(2);
    style.SetUnit(3);
    CDC dc;
    ASSERT_TRUE(dc.Attach(style.GetPrinterDC()));
    EXPECT_EQ(dc.GetDeviceCaps(PHYSICALWIDTH), 6071);
    EXPECT_EQ(dc.GetDeviceCaps(PHYSICALHEIGHT), 4299);
    EXPECT_TRUE(style.GetPaperSize() == CSize(2570, 1820));
    EXPECT_EQ(style.GetDpi(), 600);
    EXPECT_EQ(style.GetUnit(), 2);
    EXPECT_EQ(style.GetSelectedPrinterDC(), nullptr);

    CPrintInfo info;
    EXPECT_EQ(style.GetPrinterFromDC(&dc, nullptr), 0);
    EXPECT_EQ(style.GetPrinterFromDC(&dc, &info), 0) << "nothing chosen";
    ASSERT_TRUE(info.m_pPD->GetDefaults());
    EXPECT_EQ(style.GetPrinterFromDC(&dc, &info), 1);
    EXPECT_TRUE(style.GetPaperSize() == CSize(2100, 2970));
}
