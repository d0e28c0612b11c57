#include "qellib10/print/page_style.h"

#include <cstdlib>

#include "qellib10/platform/printing/print_spooler.h"

#include "../support/canvas.h"
#include "../support/test.h"

namespace {

// A style without a print server, and a dialog that returns what it is given.
struct PageStyle : testing::Test, qel::PrintDialogProvider {
    struct Style : CQelPrintJobPageStyle {
        using CQelPrintJobPageStyle::GetDevMode;
    };

    PageStyle() { qel::SetPrintDialogProvider(this); }
    ~PageStyle() override { qel::SetPrintDialogProvider(nullptr); }
    std::optional<qel::PrintChoice> Choose(const qel::PrintDialogRequest& request) override {
        flags = request.flags;
        return answer;
    }
    static bool IsContext(HDC dc) { return GetDeviceCaps(dc, LOGPIXELSX) != 0; }

    TempFolder folder;
    EnvironmentScope server{"CUPS_SERVER", folder.Posix("no.sock").c_str()};
    EnvironmentScope target{"QELLIB10_PDF_DIR", folder.Posix("out").c_str()};
    DWORD flags = 0;
    std::optional<qel::PrintChoice> answer;
    Style style;
};

}  // namespace

TEST_F(PageStyle, TakesPaperAndResolutionFromADeviceMode) {
    DEVMODE mode{};
    for (const auto& [form, direction, given, expected] :
         Cases<short, short, CSize, CSize>{{9, 1, {}, {2100, 2970}},
                                           {9, 2, {}, {2970, 2100}},
                                           {35, 1, {}, {1760, 1250}},
                                           {41, 2, {}, {3289, 2150}},
                                           {9, 2, {500, 900}, {500, 900}},  // as given
                                           {9, 1, {500, 0}, {2100, 2970}},
                                           {13, 1, {0, 900}, {1820, 2570}},
                                           {1, 1, {}, {1820, 2570}},  // unknown forms: as it was
                                           {42, 2, {}, {2570, 1820}},
                                           {0, 1, {}, {2570, 1820}}}) {
        mode.dmPaperSize = form;
        mode.dmOrientation = direction;
        mode.dmPaperWidth = static_cast<short>(given.cx);
        mode.dmPaperLength = static_cast<short>(given.cy);
        style.GetDevMode(&mode, nullptr);
        EXPECT_TRUE(style.GetPaperSize() == expected) << form << " " << direction;
        EXPECT_EQ(style.GetPaperForm(), form);
        EXPECT_EQ(style.GetPaperDirection(), direction);
    }
    EXPECT_EQ(style.GetDpi(), 0);
    EXPECT_EQ(style.GetPrinterDevice(), "PDF") << "the first that begins with nothing";
    std::fill_n(mode.dmDeviceName, CCHDEVICENAME, BYTE{'x'});
    CDC screen;
    screen.CreateCompatibleDC(nullptr);
    style.GetDevMode(&mode, &screen);
    EXPECT_EQ(style.GetDpi(), 96);
    EXPECT_EQ(style.GetPrinterDevice().GetLength(), CCHDEVICENAME) << "a name without its end";
    mode.dmYResolution = 300;
    style.GetDevMode(&mode, &screen);
    EXPECT_EQ(style.GetDpi(), 300);
}

TEST_F(PageStyle, MillimetresAreCutToPixelsAndWrap) {
    CRect rect(-1, 100, -100, 254);
    EXPECT_EQ(style.ConvertMillimetreToPixel(rect), 0);
    EXPECT_TRUE(rect == CRect(-1, 100, -100, 254));
    style.SetDpi(600);
    EXPECT_EQ(style.ConvertMillimetreToPixel(rect), 1);
    EXPECT_TRUE(rect == CRect(-2, 236, -236, 600));
    CPoint point(0x7FFFFFFF, -0x7FFFFFFF);
    EXPECT_EQ(style.ConvertMillimetreToPixel(point), 1);
    EXPECT_TRUE(point == CPoint(-2, 2));
    style.SetPrintBlock({0x10000, 0x10001});
    EXPECT_EQ(style.GetPageBlocks(), 0x10000);
}

TEST_F(PageStyle, IsEqualInAllThatAJobFileKeeps) {
    using S = CQelPrintJobPageStyle;
    const auto differs = [](auto setter, auto value) {
        S changed;
        (changed.*setter)(value);
        EXPECT_TRUE(S(changed) == changed);
        return !(changed == S());
    };
    for (const auto setter : {&S::SetUnit, &S::SetDpi, &S::SetPaperForm, &S::SetPaperDirection, &S::SetTopMargin,
                              &S::SetBottomMargin, &S::SetLeftMargin, &S::SetRightMargin, &S::SetPrintDirection})
        EXPECT_TRUE(differs(setter, 7));
    for (const auto setter : {&S::SetPrinterDriverName, &S::SetPrinterDevice, &S::SetPrinterPort})
        EXPECT_TRUE(differs(setter, CString("a")));
    for (const auto setter : {&S::SetPaperSize, &S::SetPrintBlock}) EXPECT_TRUE(differs(setter, CSize(1, 2)));
    EXPECT_TRUE(differs(static_cast<void (S::*)(UINT)>(&S::SetStyleName), 28001u));
    for (const auto setter : {&S::SetPrnTopMargin, &S::SetPrnBottomMargin, &S::SetPrnLeftMargin, &S::SetPrnRightMargin})
        EXPECT_FALSE(differs(setter, 7));
}

TEST_F(PageStyle, OwnsOneContext) {
    CQelPrintJobPageStyle other;
    EXPECT_EQ(style.SelectPrinter(), 0) << "cancelled";
    EXPECT_EQ(style.MovePrinterDC(other), 0);
    answer = {"PDF", std::nullopt};
    ASSERT_EQ(style.SelectPrinter(), 1);
    EXPECT_EQ(flags, PD_NOPAGENUMS | PD_NOSELECTION | PD_HIDEPRINTTOFILE | PD_USEDEVMODECOPIES);
    EXPECT_EQ(style.GetPrinterDriverName(), "PDF");
    EXPECT_EQ(style.GetPrinterPort(), folder.Path("out"));
    EXPECT_EQ(style.GetDpi(), 600);
    const HDC first = style.GetSelectedPrinterDC();
    style = *&style;
    EXPECT_EQ(style.MovePrinterDC(style), 1);
    EXPECT_TRUE(IsContext(first)) << "to itself";
    EXPECT_EQ(style.GetSelectedPrinterDC(), first) << "to itself";

    ASSERT_EQ(other.SelectPrinter(), 1);
    const HDC second = other.GetSelectedPrinterDC();
    EXPECT_EQ(other.MovePrinterDC(style), 1);
    EXPECT_FALSE(IsContext(second));
    EXPECT_EQ(other.GetSelectedPrinterDC(), first);
    EXPECT_EQ(style.GetSelectedPrinterDC(), nullptr);
    EXPECT_EQ(CQelPrintJobPageStyle(other).GetSelectedPrinterDC(), nullptr);
    static_cast<CQelPrintJobPageStyle&>(style) = other;
    EXPECT_TRUE(IsContext(first));
    EXPECT_EQ(style.GetSelectedPrinterDC(), nullptr);
    other = style;
    EXPECT_FALSE(IsContext(first));
    ASSERT_EQ(other.SelectPrinter(), 1);
    const HDC third = other.GetSelectedPrinterDC();
    EXPECT_EQ(other.Initialize(), 1);
    EXPECT_FALSE(IsContext(third));
    EXPECT_EQ(Line({other.GetPrinterDevice(), other.GetPrinterDriverName()}), "PDF ") << "the driver's name alone goes";
    answer = {"nobody", std::nullopt};
    EXPECT_EQ(other.SelectPrinter(), 0);
    EXPECT_EQ(other.GetPrinterDC(), nullptr);
}

// Layouts count with sizes of their own; the sheet that a form is printed on lies the same way, and is as large to 4
// mm. Forms without such a size (1, and 42, which is printed on A4) count with the sheet.
TEST_F(PageStyle, MakesContextsWithItsForm) {
    style.SetPrinterDevice("PDF");
    for (int form = 1; form <= 42; ++form) {
        for (const int direction : {1, 2}) {
            style.SetPaperForm(form);
            style.SetPaperDirection(direction);
            style.SetUnit(3);
            CDC dc;
            ASSERT_TRUE(dc.Attach(style.GetPrinterDC()));
            const int tolerance = form == 12 ? 100 : 50;  // layouts take B4 for the other standard's
            const auto tenths = [&](int index) { return MulDiv(dc.GetDeviceCaps(index), 254, 600); };
            EXPECT_NEAR(tenths(PHYSICALWIDTH), style.GetPaperSize().cx, tolerance) << form;
            EXPECT_NEAR(tenths(PHYSICALHEIGHT), style.GetPaperSize().cy, tolerance) << form;
            EXPECT_EQ(Line({style.GetDpi(), style.GetUnit()}), "600 2");
            EXPECT_EQ(style.GetSelectedPrinterDC(), nullptr);
        }
    }
    CPrintInfo info;
    EXPECT_EQ(style.GetPrinterFromDC(nullptr, nullptr), 0);
    EXPECT_EQ(style.GetPrinterFromDC(nullptr, &info), 0) << "nothing chosen";
    ASSERT_TRUE(info.m_pPD->GetDefaults());
    EXPECT_EQ(style.GetPrinterFromDC(nullptr, &info), 1);
    EXPECT_TRUE(style.GetPaperSize() == CSize(2100, 2970));
    info.m_pPD->GetDevMode()->dmPaperSize = DMPAPER_LETTER;
    info.m_pPD->GetDevMode()->dmOrientation = DMORIENT_LANDSCAPE;
    CDC dc;
    ASSERT_TRUE(dc.CreateDC(nullptr, "PDF", nullptr, info.m_pPD->GetDevMode()));
    EXPECT_EQ(style.GetPrinterFromDC(&dc, &info), 1);
    EXPECT_TRUE(style.GetPaperSize() == CSize(2794, 2159)) << "that of the sheet";
    EXPECT_EQ(info.m_pPD->GetDevMode()->dmPaperWidth, 0) << "the dialog's settings stay as they are";

    // Set by hand, read for each page, on the printer and where there is no sheet.
    Canvas picture;
    for (const auto& [context, paper, expected] : Cases<CDC*, CSize, CSize>{{nullptr, {2800, 2160}, {2800, 2160}},
                                                                            {&picture.dc, {2160, 2800}, {2800, 2160}},
                                                                            {&dc, {2800, 2160}, {2794, 2159}}}) {
        style.SetPaperSize(paper);
        for (int page = 0; page < 3; ++page) {
            EXPECT_EQ(style.GetPrinterFromDC(context, &info), 1);
            EXPECT_TRUE(style.GetPaperSize() == expected) << page << ": " << style.GetPaperSize().cx;
        }
    }
    style.SetPrinterDevice("PDF");
    style.SetPaperSize({2800, 2160});
    for (int document = 0; document < 2; ++document) {
        ASSERT_TRUE(CDC().Attach(style.GetPrinterDC()));
        EXPECT_TRUE(style.GetPaperSize() == CSize(2794, 2159)) << document << ": " << style.GetPaperSize().cx;
    }
}
