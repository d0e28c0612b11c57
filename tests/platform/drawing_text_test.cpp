#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/text_font.h"

#include "../support/cases.h"
#include "../support/child_process.h"
#include "../support/code_page_scope.h"
#include "qellib10/platform/shell/debug_output.h"

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255), kGrey = RGB(200, 200, 200);

// Writes on grey, so that the white box behind a text shows.
struct Canvas {
    Canvas() {
        EXPECT_TRUE(dc.CreateCompatibleDC(nullptr));
        EXPECT_TRUE(bitmap.CreateBitmap(kWidth, kHeight, 1, 32, nullptr));
        dc.SelectObject(&bitmap);
        const RECT all{0, 0, kWidth, kHeight};
        dc.FillSolidRect(&all, kGrey);
        dc.SetBkColor(kWhite);
        EXPECT_TRUE(font.CreatePointFont(105, "Arial", &dc));
        dc.SelectObject(&font);
    }
    // Box of the pixels for which @p wanted holds.
    template <class Wanted> CRect Box(Wanted wanted) const {
        CRect box(kWidth, kHeight, 0, 0);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                if (!wanted(dc.GetPixel(x, y))) continue;
                box = CRect(std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                            std::max(box.bottom, y + 1));
            }
        }
        return box.IsRectEmpty() ? CRect() : box;
    }
    CRect Touched() const {
        return Box([](COLORREF color) { return color != kGrey; });
    }
    CRect Ink() const {
        return Box([](COLORREF color) { return GetRValue(color) < 100; });
    }
    int LineHeight() const {
        TEXTMETRIC metrics{};
        dc.GetTextMetrics(&metrics);
        return metrics.tmHeight;
    }

    static constexpr int kWidth = 160, kHeight = 80;
    CDC dc;
    CBitmap bitmap;
    CFont font;
};

int theNotices = 0;
std::string theNotice;

void DrawLine(CDC& dc, const char* text) { dc.TextOut(0, 0, text, static_cast<int>(std::strlen(text))); }
void DrawBox(CDC& dc, const char* text) {
    RECT box{0, 0, 100, 50};
    dc.DrawText(text, -1, &box, 0);
}

// How many lines developers get when the text is drawn twice in a process of its own.
int NoticesOf(UINT page, const char* text, void (*draw)(CDC&, const char*)) {
    return InChild([&] {
        const CodePageScope scope(page);
        Canvas canvas;
        qel::SetDebugOutputHook([](const char*) { ++theNotices; });
        draw(canvas.dc, text);
        draw(canvas.dc, text);
        return theNotices;
    });
}

}  // namespace

TEST(Text, InUtf8IsNoticedOnceWhereItIsTakenForJapanese) {
    const Cases<UINT, const char*, int> cases = {
        {932,
         "5 \xC2\xB5g, 20 \xC2\xB0"
         "C",
         1},
        {932, "\xE8\xA1\xA8", 1},
        {932, "5 \xC2", 0},
        {932, "pH", 0},
        {932, "\x95\x5C\x8E\xA6", 0},
        {65001, "\xC2\xB5", 0},
        {1252, "\xC2\xB5", 0},
    };
    for (const auto& [page, text, lines] : cases) {
        EXPECT_EQ(NoticesOf(page, text, DrawLine), lines) << page << ' ' << text;
        EXPECT_EQ(NoticesOf(page, text, DrawBox), lines) << page << ' ' << text << ", in a box";
    }
}

TEST(Text, OfAWholeReportIsNoticedInOneShortLine) {
    const std::string report =
        "20 \xC2\xB0"
        "C\r\n\x7F" +
        std::string(49, 'x') + "\xE8\xA1\xA8" + std::string(999, 'x');
    const std::string shown =
        "qellib10: \"20 \x81\x8B"
        "C   " +
        std::string(49, 'x') + "...\" is drawn as";
    const int shows = InChild([&] {
        const CodePageScope scope(932);
        Canvas canvas;
        qel::SetDebugOutputHook([](const char* line) { theNotice = line; });
        DrawBox(canvas.dc, report.c_str());
        return theNotice.starts_with(shown) && theNotice.find('\n') == theNotice.size() - 1 ? 1 : 0;
    });
    EXPECT_EQ(shows, 1);
}

TEST(Text, LineHeightsAreRoundedAscentAndDescent) {
    CDC dc;
    dc.CreateCompatibleDC(nullptr);
    for (const auto& [tenths, height] : Cases<int, int>{
             {60, 9},
             {90, 14},
             {120, 17},
             {150, 22},
             {180, 27},
             {210, 31},
             {240, 36},
         }) {
        CFont font;
        font.CreatePointFont(tenths, "Liberation Sans", &dc);
        dc.SelectObject(&font);
        TEXTMETRIC metrics{};
        dc.GetTextMetrics(&metrics);
        EXPECT_EQ(metrics.tmHeight, height) << tenths;
        LOGFONT description;
        font.GetLogFont(&description);
        EXPECT_EQ(description.lfHeight, -MulDiv(96, tenths, 720));
    }
}

TEST(Text, AnOpaqueBoxOfAdvanceAndLineHeightLiesBehindIt) {
    Canvas canvas;
    const CSize extent = canvas.dc.GetTextExtent(CString("pH 7.01"));
    EXPECT_TRUE(canvas.dc.TextOut(10, 20, CString("pH 7.01")));
    const CRect touched = canvas.Touched();
    EXPECT_TRUE(touched == CRect(CPoint(10, 20), extent)) << touched.right << ' ' << touched.bottom;
    EXPECT_FALSE(canvas.Ink().IsRectEmpty());
    EXPECT_TRUE(canvas.dc.GetCurrentPosition() == CPoint(0, 0));

    Canvas transparent;
    transparent.dc.SetBkMode(TRANSPARENT);
    transparent.dc.SetTextAlign(TA_RIGHT | TA_BASELINE);
    transparent.dc.TextOut(100, 50, CString("HHH"));
    EXPECT_LE(transparent.Touched().right, 100);
    EXPECT_EQ(transparent.Touched().bottom, 50);
}

TEST(Text, BoxesAlignBreakAndCut) {
    Canvas probe;
    const int line = probe.LineHeight();
    struct Case {
        const char* what;
        const char* text;
        CRect box;
        UINT format;
        int height;  // answered
        CRect touched;
    };
    const int width = static_cast<int>(probe.dc.GetTextExtent(CString("mol")).cx);
    for (const Case& c : {
             Case{"left", "mol", {10, 5, 150, 75}, DT_NOPREFIX, line, {10, 5, 10 + width, 5 + line}},
             Case{"right", "mol ", {10, 5, 150, 75}, DT_RIGHT, line, {150 - width, 5, 150, 5 + line}},
             Case{"centred both ways",
                  "mol",
                  {10, 5, 150, 55},
                  DT_CENTER | DT_SINGLELINE | DT_VCENTER,
                  (50 - line) / 2 + line,
                  {10 + (140 - width) / 2, 5 + (50 - line) / 2, 10 + (140 - width) / 2 + width,
                   5 + (50 - line) / 2 + line}},
             Case{"vertical centre needs a single line",
                  "mol",
                  {10, 5, 150, 55},
                  DT_VCENTER,
                  line,
                  {10, 5, 10 + width, 5 + line}},
             Case{"line ends", "mol\r\nmol\nmol", {10, 5, 150, 75}, 0, 3 * line, {10, 5, 10 + width, 5 + 3 * line}},
             Case{"words",
                  "mol mol",
                  {10, 5, 12 + width, 75},
                  DT_WORDBREAK,
                  2 * line,
                  {10, 5, 10 + width, 5 + 2 * line}},
             Case{"a partial line is cut",
                  "mol\nmol",
                  {10, 5, 150, 5 + line + 3},
                  0,
                  2 * line,
                  {10, 5, 10 + width, 5 + line + 3}},
             Case{"or left out",
                  "mol\nmol",
                  {10, 5, 150, 5 + line + 3},
                  DT_EDITCONTROL,
                  line,
                  {10, 5, 10 + width, 5 + line}},
             Case{"a long word stays whole",
                  "molmol",
                  {10, 5, 12 + width, 75},
                  DT_WORDBREAK,
                  line,
                  {10, 5, 12 + width, 5 + line}},
             Case{"or is broken",
                  "molmol",
                  {10, 5, 12 + width, 75},
                  DT_WORDBREAK | DT_EDITCONTROL,
                  2 * line,
                  {10, 5, 10 + width, 5 + 2 * line}},
             Case{"an empty box shows nothing", "mol", {10, 5, 10, 75}, 0, line, {}},
         }) {
        SCOPED_TRACE(c.what);
        Canvas canvas;
        CRect box = c.box;
        EXPECT_EQ(canvas.dc.DrawText(CString(c.text), &box, c.format), c.height);
        const CRect touched = canvas.Touched();
        EXPECT_TRUE(touched == c.touched)
            << touched.left << ' ' << touched.top << ' ' << touched.right << ' ' << touched.bottom;
    }
    CRect box(10, 5, 20, 6);
    probe.dc.DrawText(CString("mol"), &box, DT_CALCRECT | DT_SINGLELINE);
    EXPECT_TRUE(box == CRect(10, 5, 10 + width, 5 + line));
}

TEST(Text, AnyFaceSizeAndByteIsDrawn) {
    const char* const kJapanese = "\x93\x48\x92\xE8";  // two kanji, code page 932
    for (const auto& [face, tenths, text] :
         Cases<const char*, int, const char*>{{"No Such Face At All", 90, "x"},
                                              {"", 0, "x"},
                                              {nullptr, 1, "x"},
                                              {"Arial", 0x7FFFFFFF, "x"},
                                              {"Arial", -100, "x"},
                                              {"\x82\x6C\x82\x72\x20\x83\x53", 90, kJapanese},
                                              {"Arial", 90, kJapanese},
                                              {"Arial", 90, "\x01\t\xFF\x81"}}) {
        SCOPED_TRACE(std::string(face != nullptr ? face : "null") + " " + std::to_string(tenths));
        Canvas canvas;
        CFont font;
        EXPECT_TRUE(font.CreatePointFont(tenths, face, &canvas.dc));
        EXPECT_NE(canvas.dc.SelectObject(&font), nullptr);
        EXPECT_TRUE(canvas.dc.TextOut(2, 2, CString(text)));
        EXPECT_GT(canvas.dc.GetTextExtent(CString(text)).cx, 0);
        EXPECT_GE(canvas.Ink().Width(), text == kJapanese ? 14 : 0);
    }
}

TEST(TextFont, IsKeptUntilSomethingThatItDependsOnIsAnother) {
    LOGFONT font{};
    std::strcpy(font.lfFaceName, "Liberation Sans");
    const auto kept = qel::TextFont::Kept(font, -12);
    EXPECT_EQ(qel::TextFont::Kept(font, -12), kept);
    EXPECT_NE(qel::TextFont::Kept(font, 12), kept);
    using Change = void (*)(LOGFONT&);
    const Cases<const char*, Change> cases{
        {"face", [](LOGFONT& other) { std::strcpy(other.lfFaceName, "Liberation Serif"); }},
        {"weight", [](LOGFONT& other) { other.lfWeight = 700; }},
        {"italic", [](LOGFONT& other) { other.lfItalic = 1; }},
        {"underline", [](LOGFONT& other) { other.lfUnderline = 1; }},
        {"strikeout", [](LOGFONT& other) { other.lfStrikeOut = 1; }},
    };
    for (const auto& [what, change] : cases) {
        LOGFONT other = font;
        change(other);
        EXPECT_NE(qel::TextFont::Kept(other, -12), kept) << what;
    }
    const CodePageScope western(1252);
    EXPECT_NE(qel::TextFont::Kept(font, -12), kept);
}

TEST(TextFont, MeasuresATextTheSameEachTime) {
    LOGFONT font{};
    const auto kept = qel::TextFont::Kept(font, -20);
    for (int i = 0; i < 200; ++i) {
        const std::string text = std::string(static_cast<std::size_t>(i % 50 * 7), 'm') + ".5";
        ASSERT_EQ(kept->Line(text).width, qel::TextFont::Create(font, -20)->Line(text).width) << text;
    }
}
