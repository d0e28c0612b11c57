#include "qellib10/platform/drawing/dc.h"

#include "../support/canvas.h"
#include "../support/test.h"

TEST(Dc, ANewOneHasThePlatformsState) {
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    EXPECT_EQ(Line({dc.GetTextColor(), dc.GetBkColor(), dc.GetBkMode(), dc.GetTextAlign(), dc.GetMapMode()}),
              Line({0, kWhite, OPAQUE, 0, MM_TEXT}));
    EXPECT_EQ(dc.GetDeviceCaps(LOGPIXELSX), 96);
    EXPECT_TRUE(dc.GetCurrentPosition() == CPoint(0, 0));
    EXPECT_FALSE(dc.RestoreDC(-1));
    TEXTMETRIC metrics;
    ASSERT_TRUE(dc.GetTextMetrics(&metrics));
    EXPECT_NEAR(metrics.tmHeight, 16, 1);
}

TEST(Dc, LinesLeaveTheirEndOutAndMoveThePosition) {
    Canvas canvas;
    EXPECT_TRUE(canvas.dc.MoveTo(5, 5) == CPoint(0, 0));
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(canvas.dc.LineTo(14, 5));  // the second has no length and no pixel
    EXPECT_TRUE(canvas.dc.GetCurrentPosition() == CPoint(14, 5));
    ExpectBox(canvas.Ink(), {5, 5, 14, 6});
}

TEST(Dc, PensCoverThePlatformsPixels) {
    for (const auto& [style, width, isRectangle, ink] : Cases<int, int, bool, CRect>{
             {PS_SOLID, 0, false, {5, 5, 14, 6}},
             {PS_SOLID, 2, false, {4, 4, 15, 6}},
             {PS_SOLID, -4, false, {3, 3, 16, 7}},
             {PS_NULL, 1, false, {}},
             {99, 1, false, {5, 5, 14, 6}},
             {PS_SOLID, 1, true, {4, 4, 12, 9}},
             {PS_SOLID, 3, true, {3, 3, 13, 10}},
             {PS_NULL, 1, true, {4, 4, 11, 8}},
             {PS_INSIDEFRAME, 3, true, {4, 4, 12, 9}},
         }) {
        SCOPED_TRACE(Line({style, width, isRectangle}));
        Canvas canvas;
        CPen pen(style, width, kRed);
        CBrush brush(RGB(0, 0, 255));
        canvas.dc.SelectObject(&pen);
        canvas.dc.SelectObject(&brush);
        if (isRectangle) {
            canvas.dc.Rectangle(12, 9, 4, 4);  // reversed edges are exchanged
        } else {
            canvas.dc.MoveTo(5, 5);
            canvas.dc.LineTo(14, 5);
        }
        ExpectBox(canvas.Ink(), ink);
    }
}

TEST(Dc, DashesRunOnAndTheirGapsShowTheBackground) {
    Canvas canvas;
    CPen pen(PS_DOT, 1, 0);
    canvas.dc.SelectObject(&pen);
    canvas.dc.SetBkColor(kRed);
    canvas.dc.MoveTo(0, 2);
    canvas.dc.LineTo(4, 2);
    canvas.dc.LineTo(12, 2);
    EXPECT_EQ(canvas.Row(2, 0, 13), "###rrr###rrr.");
    canvas.dc.SetBkMode(TRANSPARENT);
    canvas.dc.MoveTo(1, 3);
    canvas.dc.LineTo(12, 3);
    EXPECT_EQ(canvas.Row(3, 0, 13), ".###...###...");
}

TEST(Dc, FillsHatchesAndInversionCoverTheirBox) {
    Canvas canvas;
    CBrush hatch(HS_BDIAGONAL, kRed);
    const RECT box{0, 0, 8, 8};
    canvas.dc.FillRect(&box, &hatch);
    EXPECT_EQ(canvas.Row(0, 0, 9), ".......r.");
    EXPECT_EQ(canvas.Row(7, 0, 9), "r........");
    const RECT band{10, 12, 20, 11};  // reversed: row 11
    canvas.dc.InvertRect(&band);
    EXPECT_EQ(canvas.At(10, 11), 0u);
    EXPECT_EQ(canvas.At(10, 12), kWhite);
    EXPECT_EQ(canvas.At(20, 11), kWhite);
    canvas.dc.InvertRect(&band);
    ExpectBox(canvas.Ink(), {0, 0, 8, 8});
}

TEST(Dc, EllipsesAndArcsStayInTheirBox) {
    for (const int penWidth : {1, 2}) {
        Canvas canvas;
        CPen pen(PS_SOLID, penWidth, 0);
        canvas.dc.SelectObject(&pen);
        canvas.dc.Arc(5, 5, 25, 20, 0, 0, 0, 0);
        const int outward = penWidth - 1;
        ExpectBox(canvas.Ink(), {5 - outward, 5 - outward, 25, 20});
        EXPECT_EQ(canvas.At(15, 12), kWhite);
    }
    Canvas canvas;  // counter-clockwise from the right to the left: the upper half
    canvas.dc.Arc({5, 5, 25, 25}, {100, 15}, {-100, 15});
    EXPECT_LE(canvas.Ink().bottom, 17);
    EXPECT_EQ(canvas.Ink().top, 5);
}

TEST(Dc, TheClipIsInDeviceUnitsAndACopy) {
    Canvas canvas;
    canvas.dc.SetViewportOrg(10, 10);
    {
        CRgn region;
        ASSERT_TRUE(region.CreateRectRgn(20, 20, 5, 5));
        EXPECT_EQ(canvas.dc.SelectClipRgn(&region), 2);
    }
    const RECT box{-10, -10, 30, 20};
    canvas.dc.FillSolidRect(&box, kRed);
    ExpectBox(canvas.Ink(), {5, 5, 20, 20});
    CRgn nothing;
    ASSERT_TRUE(nothing.CreateRectRgn(3, 3, 3, 3));
    EXPECT_EQ(canvas.dc.SelectClipRgn(&nothing), 1);
    canvas.dc.FillSolidRect(&box, 0);
    EXPECT_EQ(canvas.At(10, 10), kRed);
    canvas.dc.SelectClipRgn(nullptr);
    canvas.dc.FillSolidRect(&box, kRed);
    EXPECT_EQ(canvas.At(0, 0), kRed);
}

TEST(Dc, MapModesScaleToTheResolution) {
    for (const auto& [mode, device] : Cases<int, CPoint>{
             {MM_TEXT, {1000, -1000}},
             {MM_LOMETRIC, {378, 378}},
             {MM_HIMETRIC, {38, 38}},
             {MM_LOENGLISH, {960, 960}},
             {MM_HIENGLISH, {96, 96}},
             {MM_TWIPS, {67, 67}},
         }) {
        Canvas canvas;
        EXPECT_EQ(canvas.dc.SetMapMode(mode), MM_TEXT);
        CPoint point(1000, -1000);
        canvas.dc.LPtoDP(&point);
        EXPECT_TRUE(point == device) << mode << ": " << point.x << ' ' << point.y;
    }
    Canvas canvas;
    canvas.dc.SetMapMode(MM_ANISOTROPIC);
    canvas.dc.SetWindowExt(600, 600);
    canvas.dc.SetViewportExt(96, 96);
    canvas.dc.SetViewportOrg(2, 1);
    CPoint point(60, 60);
    canvas.dc.LPtoDP(&point);
    EXPECT_TRUE(point == CPoint(12, 11));
    canvas.dc.DPtoLP(&point);
    EXPECT_NEAR(point.x, 60, 3);
    CPoint far(0x7FFFFFFF, -0x7FFFFFFF - 1);
    canvas.dc.LPtoDP(&far);  // no overflow
    canvas.dc.SetMapMode(MM_TWIPS);
    CPen pen(PS_SOLID, 43, 0);  // twips: 2.87 pixels, drawn as 3
    canvas.dc.SelectObject(&pen);
    canvas.dc.SetViewportOrg(0, 0);
    canvas.dc.MoveTo(150, -150);
    canvas.dc.LineTo(300, -150);
    canvas.dc.SetMapMode(MM_TEXT);
    EXPECT_EQ(canvas.Ink().Height(), 3);
}

TEST(Dc, SavedStatesComeBackInAnyDepth) {
    Canvas canvas;
    CPen red(PS_SOLID, 1, kRed);
    EXPECT_EQ(canvas.dc.SaveDC(), 1);
    canvas.dc.SelectObject(&red);
    canvas.dc.SetTextColor(kRed);
    EXPECT_EQ(canvas.dc.SaveDC(), 2);
    canvas.dc.SetViewportOrg(7, 7);
    canvas.dc.MoveTo(3, 3);
    EXPECT_TRUE(canvas.dc.RestoreDC(1));
    EXPECT_EQ(canvas.dc.GetTextColor(), 0u);
    EXPECT_TRUE(canvas.dc.GetViewportOrg() == CPoint(0, 0));
    EXPECT_TRUE(canvas.dc.GetCurrentPosition() == CPoint(0, 0));
    EXPECT_FALSE(canvas.dc.RestoreDC(1)) << "taken back already";
    canvas.dc.LineTo(1, 0);
    EXPECT_EQ(canvas.At(0, 0), 0u) << "the black pen again";
}

TEST(Dc, ADeletedPenGoesOnDrawingAndStaleHandlesAreRefused) {
    Canvas canvas;
    CPen* before = nullptr;
    {
        CPen pen(PS_SOLID, 1, kRed);
        before = canvas.dc.SelectObject(&pen);
    }
    canvas.dc.LineTo(5, 0);
    EXPECT_EQ(canvas.At(0, 0), kRed);
    ASSERT_NE(before, nullptr);
    EXPECT_NE(canvas.dc.SelectObject(before), nullptr);
    canvas.dc.LineTo(9, 0);
    EXPECT_EQ(canvas.At(6, 0), 0u);

    CPen first(PS_SOLID, 1, 0), second(PS_SOLID, 1, kRed);
    canvas.dc.SelectObject(&first);
    EXPECT_EQ(canvas.dc.SelectObject(&second), &first);

    const HDC memory = CreateCompatibleDC(nullptr);
    EXPECT_TRUE(DeleteDC(memory));
    EXPECT_FALSE(DeleteDC(memory));
    EXPECT_EQ(GetDeviceCaps(memory, LOGPIXELSX), 0);
    EXPECT_EQ(SelectObject(memory, first.GetSafeHandle()), nullptr);
    EXPECT_EQ(CreateCompatibleDC(memory), nullptr);
    EXPECT_FALSE(DeleteObject(GetStockObject(BLACK_PEN)));
}

TEST(Dc, BitmapsAreLimitedAndCopied) {
    CBitmap bitmap;
    EXPECT_EQ(Line({bitmap.CreateBitmap(0, 5, 1, 32, nullptr), bitmap.CreateBitmap(32768, 1, 1, 32, nullptr),
                    bitmap.CreateBitmap(5, 5, 2, 32, nullptr)}),
              "0 0 0");
    Canvas source, target;
    source.dc.LineTo(10, 10);
    EXPECT_TRUE(target.dc.BitBlt(20, 20, 100, 100, &source.dc, -2, 0, SRCCOPY));
    EXPECT_FALSE(target.dc.BitBlt(0, 0, 100, 100, &source.dc, 0, 0, SRCCOPY + 1));
    ExpectBox(target.Ink(), {22, 20, 32, 30});
    EXPECT_TRUE(source.dc.BitBlt(1, 3, 20, 20, &source.dc, 0, 0)) << "onto itself";
    EXPECT_EQ(source.At(10, 12), 0u);
    source.dc.SetMapMode(MM_ANISOTROPIC);
    source.dc.SetViewportExt(1000, 1000);
    EXPECT_TRUE(target.dc.BitBlt(0, 0, 0x7FFFFFFF, 1, &source.dc, -0x40000000, 0)) << "farther than 32 bits reach";
    CDC none;
    EXPECT_FALSE(target.dc.BitBlt(0, 0, 1, 1, &none, 0, 0));
    EXPECT_FALSE(none.LineTo(1, 1));
    EXPECT_EQ(none.SaveDC(), 0);
    EXPECT_LT(none.StartDoc("x"), 1);
}

TEST(Dc, APictureIsLetGoWhenTheFirstOneIsSelectedAgain) {
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    EXPECT_EQ(dc.SaveDC(), 1);
    CBitmap bitmap;
    ASSERT_TRUE(bitmap.CreateBitmap(2, 1, 1, 32, nullptr));
    CBitmap* const first = dc.SelectObject(&bitmap);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(dc.GetCurrentBitmap(), &bitmap);
    const DWORD words[] = {0x112233, 0x445566, 0x778899};
    EXPECT_EQ(bitmap.SetBitmapBits(sizeof words, words), 8u);
    EXPECT_EQ(dc.GetPixel(1, 0), RGB(0x44, 0x55, 0x66));
    EXPECT_EQ(dc.SelectObject(first), &bitmap);
    EXPECT_EQ(dc.GetDeviceCaps(HORZRES), 1);
    EXPECT_EQ(dc.SelectObject(&bitmap), first);
    EXPECT_TRUE(dc.RestoreDC(1));
    EXPECT_EQ(dc.GetDeviceCaps(HORZRES), 1) << "a state has its picture";
}

// As code of the framework's own systems writes it.
TEST(Dc, TakesRectanglesByTheirAddressToo) {
    Canvas canvas;
    CRect box(5, 5, 15, 15);
    CBrush red(kRed);
    EXPECT_EQ(canvas.dc.IntersectClipRect(box), SIMPLEREGION);
    box.OffsetRect(5, 5);
    canvas.dc.FillRect(box, &red);
    ExpectBox(canvas.Ink(), {10, 10, 15, 15});
    EXPECT_EQ(canvas.dc.IntersectClipRect(&box), SIMPLEREGION);
    EXPECT_EQ(canvas.dc.GetClipBox(box), SIMPLEREGION);
    EXPECT_EQ(box, CRect(10, 10, 15, 15));
    EXPECT_EQ(box.CenterPoint() - CPoint(2, 2), CSize(10, 10));
    canvas.dc.Rectangle(&box);
    EXPECT_EQ(canvas.dc.IntersectClipRect(0, 0, 5, 5), NULLREGION);
    CRect around;
    EXPECT_TRUE(around.UnionRect(box, {0, 0, 1, 11}));
    EXPECT_EQ(around, CRect(0, 0, 15, 15));
    EXPECT_TRUE(around.UnionRect(box, {20, 20, 20, 30})) << "without area";
    EXPECT_EQ(around, box) << "without area";
    CFont font;
    LOGFONT description;
    const std::string face = std::string(30, 'a') + "\x93\x48";
    ASSERT_TRUE(font.CreateFont(-20, 0, 0, 0, FW_BOLD, 1, 0, 0, SHIFTJIS_CHARSET, OUT_DEFAULT_PRECIS,
                                CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, face.c_str()));
    ASSERT_EQ(font.GetObject(sizeof description, &description), int{sizeof description});
    EXPECT_EQ(description.lfWeight, FW_BOLD);
    EXPECT_EQ(description.lfCharSet, SHIFTJIS_CHARSET);
    EXPECT_EQ(description.lfFaceName, std::string(30, 'a')) << "no half character";
}
