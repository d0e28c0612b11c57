#include <algorithm>
#include <cstring>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/text_font.h"

#include "../support/canvas.h"
#include "../support/child_process.h"
#include "../support/test.h"
#include "qellib10/platform/shell/debug_output.h"

namespace {

constexpr COLORREF kGrey = RGB(200, 200, 200);

// Writes on grey, so that the white box of a text shows.
struct TextCanvas : Canvas {
    TextCanvas() : Canvas(160, 80) {
        const RECT all{0, 0, 160, 80};
        dc.FillSolidRect(&all, kGrey);
        dc.SetBkColor(kWhite);
        EXPECT_TRUE(font.CreatePointFont(105, "Arial", &dc));
        dc.SelectObject(&font);
    }
    CRect Touched() {
        return Box([](COLORREF color) { return color != kGrey; });
    }
    CRect Dark() {
        return Box([](COLORREF color) { return GetRValue(color) < 100; });
    }

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
        TextCanvas canvas;
        qel::SetDebugOutputHook([](const char*) { ++theNotices; });
        draw(canvas.dc, text);
        draw(canvas.dc, text);
        return theNotices;
    });
}

}  // namespace

TEST(Text, InUtf8IsNoticedOnceWhereItIsTakenForJapanese) {
    for (const auto& [page, text, lines] : Cases<UINT, const char*, int>{
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
         }) {
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
    EXPECT_TRUE(HoldsInChild([&] {
        const CodePageScope scope(932);
        TextCanvas canvas;
        qel::SetDebugOutputHook([](const char* line) { theNotice = line; });
        DrawBox(canvas.dc, report.c_str());
        EXPECT_EQ(theNotice.substr(0, shown.size()), shown);
        EXPECT_EQ(theNotice.find('\n'), theNotice.size() - 1);
    }));
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

TEST(Text, AnOpaqueBoxHasAdvanceAndLineHeight) {
    TextCanvas canvas;
    const CSize extent = canvas.dc.GetTextExtent(CString("pH 7.01"));
    EXPECT_TRUE(canvas.dc.TextOut(10, 20, CString("pH 7.01")));
    const CRect touched = canvas.Touched();
    EXPECT_TRUE(touched == CRect(CPoint(10, 20), extent)) << touched.right << ' ' << touched.bottom;
    EXPECT_FALSE(canvas.Dark().IsRectEmpty());
    EXPECT_TRUE(canvas.dc.GetCurrentPosition() == CPoint(0, 0));

    TextCanvas transparent;
    transparent.dc.SetBkMode(TRANSPARENT);
    transparent.dc.SetTextAlign(TA_RIGHT | TA_BASELINE);
    transparent.dc.TextOut(100, 50, CString("HHH"));
    EXPECT_LE(transparent.Touched().right, 100);
    EXPECT_EQ(transparent.Touched().bottom, 50);
}

TEST(Text, BoxesAlignBreakAndCut) {
    TextCanvas probe;
    TEXTMETRIC metrics{};
    probe.dc.GetTextMetrics(&metrics);
    const int line = metrics.tmHeight, width = static_cast<int>(probe.dc.GetTextExtent(CString("mol")).cx);
    const int right = 140 - width, center = right / 2, middle = (50 - line) / 2;
    const CPoint corner(10, 5);
    const auto at = [&](int x, int y, int cx, int cy) { return CRect(corner + CSize(x, y), CSize(cx, cy)); };
    for (const auto& [text, size, format, height, touched] : Cases<const char*, CSize, UINT, int, CRect>{
             {"mol", {140, 70}, DT_NOPREFIX, line, at(0, 0, width, line)},
             {"mol ", {140, 70}, DT_RIGHT, line, at(right, 0, width, line)},
             {"mol", {140, 50}, DT_CENTER | DT_SINGLELINE | DT_VCENTER, middle + line, at(center, middle, width, line)},
             {"mol", {140, 50}, DT_VCENTER, line, at(0, 0, width, line)},  // needs a single line
             {"mol\r\nmol\nmol", {140, 70}, 0, 3 * line, at(0, 0, width, 3 * line)},
             {"mol mol", {width + 2, 70}, DT_WORDBREAK, 2 * line, at(0, 0, width, 2 * line)},
             {"mol\nmol", {140, line + 3}, 0, 2 * line, at(0, 0, width, line + 3)},       // a partial line is cut
             {"mol\nmol", {140, line + 3}, DT_EDITCONTROL, line, at(0, 0, width, line)},  // or left out
             {"molmol", {width + 2, 70}, DT_WORDBREAK, line, at(0, 0, width + 2, line)},  // a long word stays whole
             {"molmol", {width + 2, 70}, DT_WORDBREAK | DT_EDITCONTROL, 2 * line, at(0, 0, width, 2 * line)},
             {"mol", {0, 70}, 0, line, CRect()},
         }) {
        SCOPED_TRACE(testing::Message() << text << ' ' << format);
        TextCanvas canvas;
        CRect box(corner, size);
        EXPECT_EQ(canvas.dc.DrawText(CString(text), &box, format), height);
        ExpectBox(canvas.Touched(), touched);
    }
    CRect box(10, 5, 20, 6);
    probe.dc.DrawText(CString("mol"), &box, DT_CALCRECT | DT_SINGLELINE);
    ExpectBox(box, at(0, 0, width, line));
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
        TextCanvas canvas;
        CFont font;
        EXPECT_TRUE(font.CreatePointFont(tenths, face, &canvas.dc));
        EXPECT_NE(canvas.dc.SelectObject(&font), nullptr);
        EXPECT_TRUE(canvas.dc.TextOut(2, 2, CString(text)));
        EXPECT_GT(canvas.dc.GetTextExtent(CString(text)).cx, 0);
        EXPECT_GE(canvas.Dark().Width(), text == kJapanese ? 14 : 0);
    }
}

TEST(TextFont, IsKeptUntilSomethingThatItDependsOnIsAnother) {
    LOGFONT font{};
    std::strcpy(font.lfFaceName, "Liberation Sans");
    const auto kept = qel::TextFont::Kept(font, -12);
    EXPECT_EQ(qel::TextFont::Kept(font, -12), kept);
    EXPECT_NE(qel::TextFont::Kept(font, 12), kept);
    using Change = void (*)(LOGFONT&);
    for (const auto& [what, change] : Cases<const char*, Change>{
             {"face", [](LOGFONT& other) { std::strcpy(other.lfFaceName, "Liberation Serif"); }},
             {"weight", [](LOGFONT& other) { other.lfWeight = 700; }},
             {"italic", [](LOGFONT& other) { other.lfItalic = 1; }},
             {"underline", [](LOGFONT& other) { other.lfUnderline = 1; }},
             {"strikeout", [](LOGFONT& other) { other.lfStrikeOut = 1; }},
         }) {
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
