#include "qellib10/graph/back_buffer_dc.h"

#include "../support/test.h"
#include "qellib10/platform/drawing/dc.h"

TEST(BackBufferDC, HasAPictureFromCreateToDestroy) {
    CBackBufferDC buffer;
    RECT all{0, 0, 20, 10};
    EXPECT_EQ(Line({buffer.Resize(1, 1), buffer.Destroy(), buffer.FillSolidRect(&all, 0)}), "0 0 0");
    EXPECT_TRUE(buffer.GetSize() == CSize(0, 0));
    ASSERT_EQ(buffer.Create(20, 10, nullptr), 1);
    EXPECT_EQ(buffer.Create(20, 10, nullptr), 0);
    EXPECT_TRUE(buffer.GetSize() == CSize(20, 10));

    CDC dc;
    ASSERT_TRUE(dc.Attach(buffer));
    dc.SetBkColor(RGB(1, 2, 3));
    EXPECT_EQ(buffer.FillSolidRect(&all, RGB(255, 0, 0)), 1);
    EXPECT_EQ(dc.GetPixel(19, 9), RGB(255, 0, 0));
    EXPECT_EQ(dc.GetBkColor(), RGB(1, 2, 3));
    EXPECT_EQ(buffer.Resize(30, 5), 1);
    EXPECT_EQ(dc.GetPixel(29, 4), 0u);  // a new picture is black
    EXPECT_EQ(buffer.Resize(0, 5), 0);
    EXPECT_TRUE(buffer.GetSize() == CSize(0, 0));
    EXPECT_EQ(buffer.Resize(3, 4), 1);
    dc.Detach();

    CBackBufferDC same;
    same = buffer;
    EXPECT_EQ(HDC(same), HDC(buffer));
    EXPECT_EQ(same.Destroy(), 1);
    EXPECT_EQ(buffer.Destroy(), 0);  // refused, not followed
}
