#include "qellib10/gtk/drawing_view.h"

#include <gtest/gtest.h>

#include <memory>

#include "../support/line.h"
#include "screen.h"

namespace {

constexpr COLORREF kBlue = RGB(0, 0, 255);

}  // namespace

TEST(DrawingView, DrawsAgainOnlyForAnotherSizeAndRedraw) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    int drawn = 0;
    auto view = std::make_unique<qel::DrawingView>(
        [&](CDC& dc, const CSize& size) {
            ++drawn;
            CPen pen(PS_SOLID, 1, kBlue);
            CPen* const before = dc.SelectObject(&pen);
            dc.MoveTo(0, size.cy - 1);
            dc.LineTo(size.cx, size.cy - 1);
            dc.SelectObject(before);
            dc.SetViewportOrg(5, 5);  // nothing of it stays
        },
        RGB(255, 255, 0));
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget* const widget = view->Widget();
    gtk_container_add(GTK_CONTAINER(window), widget);
    EXPECT_EQ(view->Picture().GetSafeHandle(), nullptr);
    view->DrawMore([&](CDC&) { ADD_FAILURE() << "there is nothing to draw on"; });
    gtk_window_resize(GTK_WINDOW(window), 200, 120);
    gtk_widget_show_all(window);

    // Waits until the screen has this pixel.
    const auto shows = [&](int x, int y, unsigned color) {
        return RunUntil([&] { return At(ScreenOf(widget, "view"), x, y) == color; });
    };
    EXPECT_TRUE(shows(100, 119, 0x0000FF));
    EXPECT_TRUE(view->Size() == CSize(200, 120));
    EXPECT_EQ(At(ScreenOf(widget, "view"), 199, 118), 0xFFFF00U);

    const CRect filled(10, 10, 50, 50), changed(20, 30, 40, 10);
    view->DrawMore([&](CDC& dc) { dc.FillSolidRect(&filled, RGB(255, 0, 0)); }, &changed);
    EXPECT_TRUE(shows(39, 29, 0xFF0000));
    EXPECT_EQ(At(ScreenOf(widget, "view"), 45, 45), 0xFFFF00U) << "outside of what was said to be changed";
    gtk_widget_queue_draw(widget);
    EXPECT_TRUE(shows(45, 45, 0xFF0000));
    EXPECT_EQ(drawn, 1);

    view->Redraw();
    view->DrawMore([&](CDC&) { ADD_FAILURE() << "all is drawn anyway"; });
    EXPECT_TRUE(shows(45, 45, 0xFFFF00));
    gtk_window_resize(GTK_WINDOW(window), 300, 150);
    EXPECT_TRUE(RunUntil([&] { return view->Size() == CSize(300, 150); }));
    BITMAP size{};
    EXPECT_EQ(Line({view->Picture().GetBitmap(&size), size.bmWidth, size.bmHeight}), "1 300 150");
    EXPECT_TRUE(shows(299, 149, 0x0000FF));
    EXPECT_EQ(drawn, 3);

    view.reset();  // the widget lives on
    gtk_widget_queue_draw(widget);
    EXPECT_TRUE(RunUntil([&] { return At(ScreenOf(widget, "view_gone"), 299, 149) != 0x0000FF; }));
    gtk_widget_destroy(window);
}
