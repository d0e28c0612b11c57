#include "qellib10/gtk/chart_view.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "qellib10/graph/chart_csv.h"

#include "../support/line.h"
#include "screen.h"

namespace {

qel::Chart Curve() {
    qel::Chart chart;
    chart.title = "Live curve";
    chart.axes[0].low = 0, chart.axes[0].high = 10, chart.axes[0].title = "Time", chart.axes[0].unit = "s";
    chart.axes[1].low = 0, chart.axes[1].high = 100, chart.axes[1].title = "Potential", chart.axes[1].unit = "mV";
    chart.series = {{.name = "Cell \"1\"", .points = {{0, 10}, {5, 60}, {10, 90}}}};
    return chart;
}

// A window with a chart, and what a user does there.
class ChartWindow {
public:
    ChartWindow() : view(Curve()), m_window(gtk_window_new(GTK_WINDOW_TOPLEVEL)) {
        gtk_container_add(GTK_CONTAINER(m_window), view.Widget());
        gtk_window_resize(GTK_WINDOW(m_window), 480, 320);
        gtk_widget_show_all(m_window);
        EXPECT_TRUE(RunUntil([&] { return IsShown(); }));
    }
    ~ChartWindow() { gtk_widget_destroy(m_window); }

    // The middle of the plot has been drawn.
    bool IsShown() { return view.Navigator().IsInPlot({240 * Scale(), 160 * Scale()}); }
    double Scale() { return gtk_widget_get_scale_factor(view.Widget()); }

    void Key(guint key, guint state = 0) {
        GdkEvent* const event = gdk_event_new(GDK_KEY_PRESS);
        event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(view.Widget())));
        event->key.keyval = key;
        event->key.state = state;
        Send(event);
    }
    void Mouse(GdkEventType type, double x, double y, guint button = 1) {
        GdkEvent* const event = gdk_event_new(type);
        event->button.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(view.Widget())));
        if (type == GDK_MOTION_NOTIFY) {
            event->motion.x = x, event->motion.y = y;
        } else {
            event->button.x = x, event->button.y = y, event->button.button = button;
        }
        Send(event);
    }

    qel::ChartView view;

private:
    void Send(GdkEvent* event) {
        GdkSeat* const seat = gdk_display_get_default_seat(gdk_display_get_default());
        gdk_event_set_device(event,
                             event->type == GDK_KEY_PRESS ? gdk_seat_get_keyboard(seat) : gdk_seat_get_pointer(seat));
        gtk_widget_event(view.Widget(), event);
        gdk_event_free(event);
    }

    GtkWidget* m_window;
};

}  // namespace

TEST(ChartView, ZoomsByKeysAndByDragging) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    window.Key(GDK_KEY_plus);
    EXPECT_TRUE(window.view.Navigator().IsZoomed());
    window.Key(GDK_KEY_Home);
    EXPECT_FALSE(window.view.Navigator().IsZoomed());
    window.Mouse(GDK_BUTTON_PRESS, 150, 100);
    window.Mouse(GDK_MOTION_NOTIFY, 300, 200);
    ScreenOf(window.view.Widget(), "chart_view_box");
    window.Mouse(GDK_BUTTON_RELEASE, 300, 200);
    EXPECT_TRUE(window.view.Navigator().IsZoomed());
    window.Mouse(GDK_2BUTTON_PRESS, 300, 200);
    EXPECT_FALSE(window.view.Navigator().IsZoomed());
    window.Mouse(GDK_MOTION_NOTIFY, 240, 160);
    gtk_widget_queue_draw(window.view.Widget());
    RunUntil([] { return gtk_events_pending() == 0; });
    ScreenOf(window.view.Widget(), "chart_view_values");
}

TEST(ChartView, ShowsPointsOfAnotherThreadAndChoosesSome) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    std::thread instrument([&] {
        for (int i = 1; i <= 1000; ++i) {
            const std::array<CGraphData, 2> readings = {CGraphData(i / 100.0, 50), CGraphData(i / 100.0, 51)};
            window.view.Append(i % 2 == 0 ? 0 : 7, readings);
        }
    });
    instrument.join();
    EXPECT_TRUE(RunUntil([&] { return window.view.Shown().series[0].points.size() == 1003; }));
    std::size_t chosen = 0;
    window.view.SetChooser([&](std::size_t, const std::vector<std::size_t>& points) { chosen = points.size(); });
    window.Mouse(GDK_BUTTON_PRESS, 80, 60);
    window.Mouse(GDK_MOTION_NOTIFY, 460, 280);
    window.Mouse(GDK_BUTTON_RELEASE, 460, 280);
    EXPECT_GT(chosen, 900U);
    EXPECT_FALSE(window.view.Navigator().IsZoomed());
}

TEST(ChartView, FollowsTheDesktopAndGivesItsValues) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    EXPECT_EQ(window.view.Csv(), qel::ChartCsv(window.view.Shown()));
    const auto isBackground = [&](COLORREF color) {
        return RunUntil([&] { return window.view.Shown().theme.background == color; });
    };
    EXPECT_TRUE(isBackground(qel::ChartTheme::Light().background));
    GtkCssProvider* const dark = gtk_css_provider_new();
    gtk_css_provider_load_from_data(dark, "@define-color theme_bg_color #202124;", -1, nullptr);
    GdkScreen* const screen = gdk_screen_get_default();
    gtk_style_context_add_provider_for_screen(screen, GTK_STYLE_PROVIDER(dark), GTK_STYLE_PROVIDER_PRIORITY_USER);
    EXPECT_TRUE(isBackground(qel::ChartTheme::Dark().background));
    RunUntil([] { return gtk_events_pending() == 0; });
    ScreenOf(window.view.Widget(), "chart_view_dark");
    gtk_style_context_remove_provider_for_screen(screen, GTK_STYLE_PROVIDER(dark));
    g_object_unref(dark);
    EXPECT_TRUE(isBackground(qel::ChartTheme::Light().background));
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(window.view.Widget())), "Live curve");
}
