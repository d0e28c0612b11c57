#include "qellib10/platform/drawing/file_dc.h"

#include <cairo.h>

#include <charconv>
#include <cstring>
#include <random>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/preview_dc.h"

#include "../support/canvas.h"
#include "../support/output_of.h"
#include "../support/test.h"

namespace {

// One of everything.
void DrawSheet(CDC& dc, const CString& text) {
    CPen wide(PS_SOLID, 3, RGB(0, 0, 255)), dashed(PS_DASHDOT, 1, RGB(255, 0, 0));
    CBrush hatch(HS_DIAGCROSS, RGB(0, 128, 0));
    dc.MoveTo(10, 10);
    for (int i = 0; i < 50; ++i) dc.LineTo(10 + i / 5, 10 + (i * 37) % 80);
    CPen* const before = dc.SelectObject(&wide);
    dc.SelectObject(&hatch);
    dc.Rectangle(100, 10, 180, 60);
    dc.Arc({100, 70, 180, 120}, {200, 90}, {0, 90});
    dc.SelectObject(&dashed);
    dc.Arc(10, 100, 60, 130, 0, 0, 0, 0);
    CRgn clip;
    clip.CreateRectRgn(0, 0, 400, 170);
    dc.SelectClipRgn(&clip);
    dc.MoveTo(-0x7FFFFFFF, 150);
    dc.LineTo(0x7FFFFFFF, 152);
    dc.SelectClipRgn(nullptr);
    const RECT box{20, 20, 40, 40};
    dc.InvertRect(&box);
    CFont font;
    font.CreatePointFont(120, "Arial", &dc);
    CFont* const fontBefore = dc.SelectObject(&font);
    dc.TextOut(300, 200, text);
    dc.SelectObject(fontBefore);
    dc.SelectObject(before);
}

int Draw(HDC handle, int pages, const CString& text) {
    CDC dc;
    if (!dc.Attach(handle) || dc.StartDoc("Report \x93\x48") < 1) return 0;
    for (int page = 0; page < pages; ++page) {
        if (dc.StartPage() < 1) return 0;
        DrawSheet(dc, text);
        if (dc.EndPage() < 1) return 0;
    }
    return dc.EndDoc() > 0;
}

}  // namespace

TEST(PdfDc, HasPagesTextsAndTheSameBytesAgain) {
    const TempFolder folder;
    qel::PageSetup page;
    page.sheet = {29700, 21000};
    page.margins = {500, 400, 500, 400};
    const CString text("titration \x93\x48\x92\xE8 & <1>");
    ASSERT_TRUE(Draw(qel::CreatePdfDC(folder.Path("a.pdf"), page), 2, text));
    ASSERT_TRUE(Draw(qel::CreatePdfDC(folder.Path("b.pdf"), page), 2, text));
    EXPECT_EQ(folder.Read("a.pdf"), folder.Read("b.pdf"));

    const std::string info = OutputOf("pdfinfo " + folder.Posix("a.pdf").string() + " | tr -s ' '");
    EXPECT_NE(info.find("Pages: 2"), std::string::npos) << info;
    EXPECT_NE(info.find("841.89 x 595.276 pts (A4)"), std::string::npos) << info;
    EXPECT_NE(info.find("Title: Report 滴"), std::string::npos) << info;
    EXPECT_NE(OutputOf("pdftotext " + folder.Posix("a.pdf").string() + " -").find("titration 滴定 & <1>"),
              std::string::npos);
    const std::string places = OutputOf("pdftotext -bbox " + folder.Posix("a.pdf").string() + " -");
    const auto number = [&](const std::string& name) {
        double value = -1;
        const std::size_t at = places.find(name + "=\"", places.find("<word"));
        if (at != std::string::npos)
            std::from_chars(places.data() + at + name.size() + 2, places.data() + places.size(), value);
        return value;
    };
    const double x = number("xMin"), y = number("yMin");
    EXPECT_NEAR(x, (300 + 118) * 72 / 600.0, 1) << "300 units after the margin of 5 mm";
    EXPECT_NEAR(y, (200 + 94) * 72 / 600.0, 2);
    EXPECT_EQ(OutputOf("pdffonts " + folder.Posix("a.pdf").string() + " | tail -n +3 | grep -vc 'yes yes yes'"), "0\n");
}

TEST(PdfDc, HasTheDateOfItsCallerElseOfTheEnvironment) {
    const TempFolder folder;
    const COleDateTime none(2025, 13, 1, 0, 0, 0), day(325, 11, 25, 18, 5, 9);
    for (const auto& [created, environment, expected] : Cases<std::optional<COleDateTime>, const char*, std::string>{
             {std::nullopt, nullptr, "20000101000000Z"},
             {std::nullopt, "253402300799", "99991231235959Z"},
             {std::nullopt, "253402300800", "20000101000000Z"},
             {std::nullopt, "-1", "20000101000000Z"},
             {std::nullopt, "86400 ", "20000101000000Z"},
             {std::nullopt, "", "20000101000000Z"},
             {none, "86400", "19700102000000Z"},
             {day, "86400", "03251125180509"},
         }) {
        const EnvironmentScope date("SOURCE_DATE_EPOCH", environment);
        const qel::PdfInfo info{"\x93\x48", "", "a subject", created};
        const HDC dc = qel::CreatePdfDC(folder.Path("a.pdf"), {}, info);
        ASSERT_TRUE(Draw(dc, 1, "x"));
        const std::string found = OutputOf("pdfinfo -rawdates '" + folder.Posix("a.pdf").string() + "' | tr -s ' '");
        EXPECT_NE(found.find("CreationDate: D:" + expected + "\n"), std::string::npos) << expected << " in " << found;
        EXPECT_NE(found.find("Title: 滴\nSubject: a subject\n"), std::string::npos) << found;
        EXPECT_EQ(found.find("Author"), std::string::npos);
    }
    CDC picture;
    picture.CreateCompatibleDC(nullptr);
    EXPECT_EQ(qel::SetPdfInfo(picture, {}), 0);
    EXPECT_EQ(qel::SetPdfInfo(nullptr, {}), 0);
}

TEST(PdfDc, RefusesStepsOutOfOrderAndLeavesNothingOfThem) {
    const TempFolder folder;
    CDC dc;
    ASSERT_TRUE(dc.Attach(qel::CreatePdfDC(folder.Path("a.pdf"), {})));
    EXPECT_EQ(dc.GetDeviceCaps(PHYSICALWIDTH), 4961);
    EXPECT_EQ(dc.GetDeviceCaps(PHYSICALHEIGHT), 7016);
    EXPECT_TRUE(dc.IsPrinting());
    EXPECT_EQ(Line({dc.StartPage() > 0, dc.EndPage() > 0, dc.EndDoc() > 0}), "0 0 0");
    dc.LineTo(5, 5);  // nowhere
    EXPECT_EQ(Line({dc.StartDoc("x") > 0, dc.StartDoc("y") > 0, dc.EndDoc() > 0}), "1 0 1") << "without pages";
    EXPECT_EQ(Line({dc.StartDoc("x") > 0, dc.StartPage() > 0, dc.AbortDoc() > 0}), "1 1 1");
    EXPECT_EQ(Line({dc.StartDoc("x") > 0, dc.StartPage() > 0}), "1 1");
    EXPECT_TRUE(dc.DeleteDC());
    EXPECT_EQ(folder.Count(), 0);
    constexpr int kMost = 0x7FFFFFFF;
    for (const qel::PageSetup& page : {qel::PageSetup{{0, 100}, {600, 600}, {}},
                                       {{kMost, 100}, {600, 600}, {}},
                                       {{100, 100}, {kMost, 600}, {}},
                                       {{100, 100}, {600, 0}, {}},
                                       {{100, 100}, {600, 600}, {50, 0, 50, 0}},
                                       {{100, 100}, {600, 600}, {kMost, 0, kMost, 0}},
                                       {{100, 100}, {600, 600}, {0, -1, 0, 0}}})
        EXPECT_EQ(qel::CreatePdfDC(folder.Path("a.pdf"), page), nullptr);
    EXPECT_EQ(qel::CreateSvgDC(folder.Path("a.svg"), {100, 100}, kMost), nullptr);
    EXPECT_FALSE(Draw(qel::CreatePdfDC(folder.Path("no") + "\\a.pdf", {}), 1, "x")) << "no such folder";
}

TEST(SvgDc, KeepsTextsAndIsWellFormed) {
    const TempFolder folder;
    const CString text("pH < 7 & \x93\x48");
    ASSERT_TRUE(Draw(qel::CreateSvgDC(folder.Path("a.svg"), {400, 300}), 1, text));
    ASSERT_TRUE(Draw(qel::CreateSvgDC(folder.Path("b.svg"), {400, 300}), 1, text));
    EXPECT_EQ(folder.Read("a.svg"), folder.Read("b.svg"));
    EXPECT_EQ(OutputOf("xmllint --noout " + folder.Posix("a.svg").string() + " 2>&1"), "");
    EXPECT_EQ(OutputOf("xmllint --xpath \"string(//*[local-name()='text'])\" " + folder.Posix("a.svg").string()),
              "pH < 7 & 滴\n");
}

TEST(SvgDc, DrawsWhatPagesShow) {
    const TempFolder folder;
    CDC dc;
    ASSERT_TRUE(dc.Attach(qel::CreateSvgDC(folder.Path("a.svg"), {400, 300})));
    const DOCINFO document{sizeof document, "\x01", nullptr, nullptr, 0}, toFile{0, "x", "y", nullptr, 0};
    EXPECT_LT(dc.StartDoc(&toFile), 1);
    ASSERT_GT(dc.StartDoc(&document), 0);
    ASSERT_GT(dc.StartPage(), 0);
    CPen dashed(PS_DASH, 1, RGB(255, 0, 0));
    CBrush hatch(HS_CROSS, 0);
    dc.SelectObject(&dashed);
    dc.SetBkColor(RGB(1, 2, 3));
    dc.LineTo(50, 0);
    dc.Arc(5, 5, 6, 20, 0, 0, 0, 0);  // a line: a flat ellipse would not be seen
    for (int i = 0; i < 3; ++i) dc.FillRect(CRect(-0x7FFFFFFF, i, 0x7FFFFFFF, i + 5), &hatch);
    CFont font;
    ASSERT_TRUE(font.CreateFont(20, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, "Arial"));
    dc.SelectObject(&font);
    dc.TextOut(5, 5, "x");
    ASSERT_GT(dc.EndPage(), 0);
    ASSERT_GT(dc.EndDoc(), 0);
    const std::string svg = folder.Read("a.svg");
    EXPECT_EQ(OutputOf("xmllint --noout " + folder.Posix("a.svg").string() + " 2>&1"), "");
    const std::pair<std::string_view, int> cases[] = {
        {"stroke=\"#010203\" stroke-width=\"1\" points", 1},  // below the dashes
        {"stroke-dasharray=\"18 6\" points", 1},
        {"x1=\"5.5\" y1=\"5.5\" x2=\"5.5\" y2=\"19.5\"", 2},
        {"width=\"4294967294\" height=\"5\"", 3},
        {"<pattern", 1},
        {"text-decoration=\"underline line-through\"", 1}};
    for (const auto& [text, count] : cases) {
        int found = 0;
        for (std::size_t at = svg.find(text); at != std::string::npos; at = svg.find(text, at + 1)) ++found;
        EXPECT_EQ(found, count) << text;
    }
}

TEST(CairoDc, HasTheThinLinesOfABitmap) {
    constexpr int kWidth = 200, kHeight = 150;
    cairo_surface_t* const image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t* const cairo = cairo_create(image);
    Canvas ours(kWidth, kHeight);
    CDC theirs;
    ASSERT_TRUE(theirs.Attach(qel::CreateCairoDC(cairo, {kWidth, kHeight})));
    const RECT all{0, 0, kWidth, kHeight};
    theirs.FillSolidRect(&all, kWhite);
    for (CDC* const dc : {&theirs, &ours.dc}) {
        CRgn clip;
        clip.CreateRectRgn(5, 5, 190, 140);
        dc->SelectClipRgn(&clip);
        std::mt19937 random(3);
        for (const COLORREF color : {RGB(255, 0, 0), RGB(0, 0, 255)}) {
            CPen pen(PS_SOLID, 1, color);
            dc->SelectObject(&pen);
            for (int i = 0; i < 100; ++i) dc->LineTo(int(random() % 300) - 50, int(random() % 250) - 50);
        }
    }
    ASSERT_TRUE(qel::FlushDC(theirs));
    cairo_surface_flush(image);
    const unsigned char* const bytes = cairo_image_surface_get_data(image);
    int different = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, bytes + y * cairo_image_surface_get_stride(image) + x * 4, 4);
            different += RGB(pixel >> 16, pixel >> 8, pixel) != ours.At(x, y);
        }
    }
    EXPECT_EQ(different, 0);
    theirs.DeleteDC();
    cairo_destroy(cairo);
    cairo_surface_destroy(image);
}

TEST(PreviewDc, ScalesThePrintersUnitsToTheScreen) {
    const TempFolder folder;
    Canvas canvas(500, 700);
    CDC printer;
    ASSERT_TRUE(printer.Attach(qel::CreatePdfDC(folder.Path("a.pdf"), {})));
    CPreviewDC preview;
    preview.SetOutputDC(canvas.dc);
    preview.SetAttribDC(printer);
    preview.SetTopLeftOffset({20, 10});
    preview.SetScaleRatio(1, 2);
    EXPECT_EQ(preview.GetDeviceCaps(LOGPIXELSX), 600);
    CPoint point(1250, -600);
    preview.PrinterDPtoScreenDP(&point);
    EXPECT_TRUE(point == CPoint(100, -48)) << "without the origin";
    POINT origin;
    ASSERT_TRUE(GetViewportOrgEx(preview, &origin));
    EXPECT_TRUE(CPoint(origin) == CPoint(20, 10));
    const RECT box{0, 0, 1250, 1250};
    preview.FillSolidRect(&box, kRed);
    preview.SetMapMode(MM_LOMETRIC);  // the printer's: a tenth of a millimetre, y upward
    const RECT metric{254, 0, 508, -254};
    preview.FillSolidRect(&metric, RGB(0, 0, 255));
    canvas.dc.SetMapMode(MM_TEXT);
    canvas.dc.SetViewportOrg(0, 0);
    ExpectBox(canvas.Ink(), {20, 10, 120, 110});
    for (const auto& [x, y, color] : Cases<int, int, COLORREF>{
             {20, 10, kRed},
             {20 + 48, 10, RGB(0, 0, 255)},
             {20 + 95, 10 + 47, RGB(0, 0, 255)},
             {20 + 96, 10, kRed},
         })
        EXPECT_EQ(canvas.At(x, y), color) << x;
}
