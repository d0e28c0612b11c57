#include "qellib10/platform/drawing/page_picture.h"

#include "../support/canvas.h"
#include "../support/test.h"
#include "qellib10/platform/drawing/file_dc.h"

// An inch of the drawable area is filled; the sheet is 4 inches by 2, with margins of half an inch and a quarter.
TEST(DrawPagePicture, ShowsTheWholeSheet) {
    const TempFolder folder;
    qel::PageSetup page{{10160, 5080}, {600, 300}, {1270, 635, 1270, 635}};
    CDC printer;
    ASSERT_TRUE(printer.Attach(qel::CreatePdfDC(folder.Path("a.pdf"), page)));
    CBitmap picture;
    const auto draw = [](CDC& dc) {
        const RECT inch{0, 0, 600, 300};
        dc.FillSolidRect(&inch, RGB(255, 0, 0));
        return dc.GetDeviceCaps(LOGPIXELSX) == 600;
    };
    for (const auto& [dots, width, height] : Cases<int, int, int>{
             {100, 400, 200},
             {9, 36, 18},
         }) {
        SCOPED_TRACE(dots);
        ASSERT_EQ(qel::DrawPagePicture(picture, printer, dots, draw), 1);
        BITMAP size;
        ASSERT_TRUE(picture.GetBitmap(&size));
        EXPECT_EQ(std::pair(size.bmWidth, size.bmHeight), std::pair(width, height));
        CDC screen;
        screen.CreateCompatibleDC(nullptr);
        screen.SelectObject(&picture);
        const int left = (dots + 1) / 2, top = (dots + 2) / 4;  // rounded to whole pixels
        for (const auto& [x, y, color] : Cases<int, int, COLORREF>{{left, top, RGB(255, 0, 0)},
                                                                   {left + dots - 1, top + dots - 1, RGB(255, 0, 0)},
                                                                   {left - 1, top, RGB(255, 255, 255)},
                                                                   {left, top - 1, RGB(255, 255, 255)},
                                                                   {left + dots, top, RGB(255, 255, 255)},
                                                                   {width - 1, height - 1, RGB(255, 255, 255)}})
            EXPECT_EQ(screen.GetPixel(x, y), color) << x << ", " << y;
    }
    EXPECT_EQ(qel::DrawPagePicture(picture, printer, 100, [](CDC&) { return false; }), 0);
    EXPECT_NE(picture.GetSafeHandle(), nullptr) << "what was drawn so far";
    CDC screen;
    screen.CreateCompatibleDC(nullptr);
    for (const auto& [dc, dots] : Cases<HDC, int>{
             {printer, 0},
             {printer, 9601},
             {printer, 9600},
             {screen, 96},
             {nullptr, 96},
         }) {
        EXPECT_EQ(qel::DrawPagePicture(picture, dc, dots, draw), 0) << dots;
        EXPECT_EQ(picture.GetSafeHandle(), nullptr);
    }
    EXPECT_FALSE(folder.Has("a.pdf"));
}
