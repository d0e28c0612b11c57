#include "qellib10/gtk/chart_view.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <thread>

#include "qellib10/platform/failure.h"
#include "qellib10/print/queue_data.h"

#include "../support/line.h"
#include "../support/temp_folder.h"
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
        GdkEvent* const event = NewEvent(GDK_KEY_PRESS);
        event->key.keyval = key;
        event->key.state = state;
        Send(event);
    }
    void Mouse(GdkEventType type, double x, double y, guint button = 1) {
        GdkEvent* const event = NewEvent(type);
        if (type == GDK_MOTION_NOTIFY) {
            event->motion.x = x, event->motion.y = y;
        } else {
            event->button.x = x, event->button.y = y, event->button.button = button;
        }
        Send(event);
    }

    void Drag(double x1, double y1, double x2, double y2, guint button = GDK_BUTTON_PRIMARY) {
        Mouse(GDK_BUTTON_PRESS, x1, y1, button);
        Mouse(GDK_MOTION_NOTIFY, x2, y2);
        Mouse(GDK_BUTTON_RELEASE, x2, y2, button);
    }
    void Scroll(double x, double y, double steps) {
        GdkEvent* const event = NewEvent(GDK_SCROLL);
        event->scroll.direction = GDK_SCROLL_SMOOTH;
        event->scroll.x = x, event->scroll.y = y, event->scroll.delta_y = steps;
        Send(event);
    }
    // Of a touchpad; begins with a scale of 1.
    void Pinch(double x, double y, double scale) {
        GdkEvent* const event = NewEvent(GDK_TOUCHPAD_PINCH);
        event->touchpad_pinch.phase =
            static_cast<gint8>(scale == 1 ? GDK_TOUCHPAD_GESTURE_PHASE_BEGIN : GDK_TOUCHPAD_GESTURE_PHASE_UPDATE);
        event->touchpad_pinch.n_fingers = 2;
        event->touchpad_pinch.x = x, event->touchpad_pinch.y = y, event->touchpad_pinch.scale = scale;
        Send(event);
    }
    // In units of the widget, for values of the axes.
    double Across(double value) { return view.Navigator().PlacesOf(0)->At(value) / Scale(); }
    double Up(double value) { return view.Navigator().PlacesOf(1)->At(value) / Scale(); }
    void Click(double x, double y) { Drag(Across(x), Up(y), Across(x), Up(y)); }
    void Move(double x, double y) { Mouse(GDK_MOTION_NOTIFY, Across(x), Up(y)); }
    // What a screen reader has.
    std::string Said() { return atk_object_get_description(gtk_widget_get_accessible(view.Widget())); }
    Pixels ShotOf(GtkWidget* widget, const char* name) {
        gtk_widget_queue_draw(widget);
        const gint64 later = g_get_monotonic_time() + G_USEC_PER_SEC / 5;
        RunUntil([&] { return g_get_monotonic_time() > later; });
        return ScreenOf(widget, name);
    }
    Pixels Shot(const char* name) { return ShotOf(view.Widget(), name); }

    qel::ChartView view;

private:
    GdkEvent* NewEvent(GdkEventType type) {
        GdkEvent* const event = gdk_event_new(type);
        event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(view.Widget())));
        return event;
    }
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

TEST(ChartView, ZoomsAndMovesByMouseTouchpadAndKeys) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    // The ends of the axis across, once they are drawn.
    const auto ends = [&](const std::string& expected) {
        const auto now = [&] {
            const qel::AxisPlaces& axis = *window.view.Navigator().PlacesOf(0);
            return Line({std::round(axis.low * 10), std::round(axis.high * 10)});
        };
        RunUntil([&] { return now() == expected; });
        return now();
    };
    window.Key(GDK_KEY_plus);
    EXPECT_EQ(ends("14 86"), "14 86");
    window.Key(GDK_KEY_Home);
    EXPECT_EQ(ends("0 100"), "0 100");
    const double x = window.Across(5), y = window.Up(50);
    window.Drag(window.Across(2), window.Up(80), window.Across(6), window.Up(20));
    EXPECT_EQ(ends("20 60"), "20 60") << "a box";
    window.Mouse(GDK_2BUTTON_PRESS, x, y);
    EXPECT_EQ(ends("0 100"), "0 100") << "a double click";
    window.Scroll(x, y, -1);
    EXPECT_EQ(ends("8 92"), "8 92");
    window.Scroll(x, y, 1);
    window.Drag(x, y, window.Across(8), y, GDK_BUTTON_MIDDLE);
    EXPECT_EQ(ends("-30 70"), "-30 70") << "the chart goes with the pointer";
    window.Key(GDK_KEY_Home);
    EXPECT_EQ(ends("0 100"), "0 100");
    for (const double scale : {1.0, 1.5, 2.0}) window.Pinch(x, y, scale);
    EXPECT_EQ(ends("25 75"), "25 75") << "fingers twice as far apart";
    window.Move(5, 50);
    window.Shot("chart_view_values");
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
    window.Drag(80, 60, 460, 280);
    EXPECT_GT(chosen, 900U);
    EXPECT_FALSE(window.view.Navigator().IsZoomed());
}

TEST(ChartView, FollowsTheDesktop) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    const auto isBackground = [&](COLORREF color) {
        return RunUntil([&] { return window.view.Shown().theme.background == color; });
    };
    EXPECT_TRUE(isBackground(qel::ChartTheme::Light().background));
    GtkCssProvider* const dark = gtk_css_provider_new();
    gtk_css_provider_load_from_data(dark, "@define-color theme_bg_color #202124;", -1, nullptr);
    GdkScreen* const screen = gdk_screen_get_default();
    gtk_style_context_add_provider_for_screen(screen, GTK_STYLE_PROVIDER(dark), GTK_STYLE_PROVIDER_PRIORITY_USER);
    EXPECT_TRUE(isBackground(qel::ChartTheme::Dark().background));
    window.Shot("chart_view_dark");
    gtk_style_context_remove_provider_for_screen(screen, GTK_STYLE_PROVIDER(dark));
    g_object_unref(dark);
    EXPECT_TRUE(isBackground(qel::ChartTheme::Light().background));

    // The texts grow with the desktop's, and every pixel of the screen is one of the picture.
    const double plot = window.view.Navigator().Plot().left;
    gdk_screen_set_resolution(screen, 144);
    EXPECT_TRUE(RunUntil([&] { return window.view.Navigator().Plot().left > plot * 1.2; }));
    const Pixels shown = window.Shot("chart_view_large_texts");
    gdk_screen_set_resolution(screen, 96);
    const TempFolder folder;
    window.view.Edit([](qel::Chart& chart) { chart.scale = 1.5; });
    const std::string file = folder.Posix("chart.png").string();
    EXPECT_TRUE(window.view.SavePicture(file));
    const Pixels saved(gdk_pixbuf_new_from_file(file.c_str(), nullptr));
    int different = 0;
    for (int y = 0; y < gdk_pixbuf_get_height(saved.get()); ++y)
        for (int x = 0; x < gdk_pixbuf_get_width(saved.get()); ++x) different += At(saved, x, y) != At(shown, x, y);
    EXPECT_EQ(Line({gdk_pixbuf_get_width(saved.get()), different}), Line({480 * window.Scale(), 0}));
}

TEST(ChartView, PointsAreLeftOutByMouseAndKeysAndComeBack) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    const auto leftOut = [&] {
        std::string text;
        for (const auto& [point, reason] : window.view.Shown().series[0].leftOut)
            text += std::to_string(point) + ' ' + reason + ' ';
        return text;
    };
    window.Key(GDK_KEY_l);
    window.Click(5, 60);
    EXPECT_EQ(leftOut(), "") << "not allowed";
    int changes = 0;
    window.view.AllowLeavingOut([&](std::size_t series) { changes += series == 0 ? 1 : 100; });
    window.Key(GDK_KEY_l);
    {
        const User user("reason_cancelled", [](GtkDialog*) { return GTK_RESPONSE_CANCEL; });
        window.Click(5, 60);
    }
    EXPECT_EQ(leftOut(), "");
    {
        const User user("reason", [](GtkDialog* dialog) {
            GtkWidget* const entry = Find(GTK_WIDGET(dialog), [](GtkWidget* each) { return GTK_IS_ENTRY(each); });
            GtkWidget* const ok = gtk_dialog_get_widget_for_response(dialog, GTK_RESPONSE_OK);
            gtk_entry_set_text(GTK_ENTRY(entry), "  ");
            EXPECT_FALSE(gtk_widget_get_sensitive(ok)) << "there is no reason yet";
            gtk_entry_set_text(GTK_ENTRY(entry), " air bubble ");
            return GTK_RESPONSE_OK;
        });
        window.Click(5, 60);
    }
    EXPECT_EQ(leftOut(), "1 air bubble ");
    window.Move(5, 60);
    window.Shot("chart_view_left_out");
    window.Click(5, 60);
    EXPECT_EQ(leftOut(), "") << "the same click takes it back, and asks nothing";

    window.view.AllowLeavingOut([&](std::size_t) { ++changes; },
                                [](std::size_t count) { return "all " + std::to_string(count); });
    window.Drag(window.Across(0), window.Up(100), window.Across(10) + 3, window.Up(0));
    EXPECT_EQ(leftOut(), "0 all 3 1 all 3 2 all 3 ");
    window.Drag(window.Across(0), window.Up(100), window.Across(10) + 3, window.Up(0));
    window.Key(GDK_KEY_Escape);
    for (int i = 0; i < 3; ++i) window.Key(GDK_KEY_Right, GDK_CONTROL_MASK);
    EXPECT_EQ(window.Said(), "Cell \"1\": 10.00 s, 90.0 mV");
    window.Key(GDK_KEY_Left, GDK_CONTROL_MASK);
    window.Key(GDK_KEY_Delete);
    EXPECT_EQ(leftOut(), "1 all 1 ");
    EXPECT_EQ(changes, 5);
    window.Drag(window.Across(0), window.Up(100), window.Across(10) + 3, window.Up(0));
    EXPECT_TRUE(window.view.Navigator().IsZoomed()) << "boxes zoom again after Escape";
}

TEST(ChartView, MarkersMeasureByMouseAndKeys) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    std::string moved;
    window.view.SetRangeCallback([&](const std::optional<qel::ChartRange>& range) {
        moved = range ? Line({range->series, std::round(range->from), std::round(range->to)}) : "hidden";
    });
    window.Key(GDK_KEY_m);
    EXPECT_EQ(moved, "0 3 8");
    window.Drag(window.Across(7.5), 150, window.Across(9), 200);
    EXPECT_EQ(moved, "0 3 9");
    EXPECT_FALSE(window.view.Navigator().IsZoomed());
    window.Key(GDK_KEY_Up, GDK_MOD1_MASK);
    for (int i = 0; i < 100; ++i) window.Key(GDK_KEY_Left, GDK_MOD1_MASK | GDK_SHIFT_MASK);
    EXPECT_EQ(moved, "0 0 9");
    EXPECT_TRUE(window.Said().starts_with("width 9.")) << window.Said();
    window.Move(9.3, 30);
    window.Shot("chart_view_markers");
    window.view.SetRange(qel::ChartRange{0, 5, 0});
    EXPECT_EQ(Line({window.view.Range()->from, window.view.Range()->to}), "0 5");
    window.Key(GDK_KEY_m);
    EXPECT_EQ(moved, "hidden");
    EXPECT_FALSE(window.view.Range());
}

TEST(ChartView, SavesCopiesAndPrintsByKeysAndMenu) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    const TempFolder folder;
    setenv("QELLIB10_PDF_DIR", folder.Posix("").c_str(), 1);
    window.Key(GDK_KEY_plus);
    // The name's end decides, else the kind that the dialog shows.
    const auto save = [&](const std::string& name, int kind) {
        const User user("chart_save", [&](GtkDialog* dialog) {
            GSList* const kinds = gtk_file_chooser_list_filters(GTK_FILE_CHOOSER(dialog));
            gtk_file_chooser_set_filter(GTK_FILE_CHOOSER(dialog),
                                        GTK_FILE_FILTER(g_slist_nth_data(kinds, static_cast<guint>(kind))));
            g_slist_free(kinds);
            gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), folder.Posix("").c_str());
            gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(dialog), name.c_str());
            return GTK_RESPONSE_ACCEPT;
        });
        window.Key(GDK_KEY_s, GDK_CONTROL_MASK);
    };
    save("a.png", 0);
    save("b.SVG", 0);
    for (int kind = 2; kind < 5; ++kind) save("c", kind);
    EXPECT_EQ(folder.Read("a.png").substr(1, 3) + folder.Read("b.SVG").substr(0, 4) + folder.Read("c.pdf").substr(1, 3),
              "PNG<svgPDF");
    EXPECT_EQ(folder.Read("c.csv"), window.view.Csv());
    CQelPrintJobQueueData job;
    EXPECT_EQ(job.LoadJobFile(folder.Path("c.job")), 1);

    const User user("chart_print", [](GtkDialog* dialog) {
        return gtk_print_unix_dialog_get_selected_printer(GTK_PRINT_UNIX_DIALOG(dialog)) != nullptr ? GTK_RESPONSE_OK
                                                                                                    : 0;
    });
    window.Key(GDK_KEY_p, GDK_CONTROL_MASK);
    EXPECT_GT(folder.Read("Live curve.pdf").size(), 3000U);
    EXPECT_EQ(window.Said(), "printed");

    window.Key(GDK_KEY_c, GDK_CONTROL_MASK | GDK_SHIFT_MASK);
    GtkClipboard* const clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    const std::unique_ptr<char, decltype(&g_free)> text(gtk_clipboard_wait_for_text(clipboard), g_free);
    std::string csv = window.view.Csv();
    std::erase(csv, '\r');  // the clipboard has the line ends of the system
    EXPECT_EQ(text.get(), csv);
    window.Key(GDK_KEY_c, GDK_CONTROL_MASK);
    const Pixels copied(gtk_clipboard_wait_for_image(clipboard));
    EXPECT_EQ(Line({gdk_pixbuf_get_width(copied.get())}), Line({480 * window.Scale()}));

    gboolean isOpen = FALSE;
    g_signal_emit_by_name(window.view.Widget(), "popup-menu", &isOpen);
    EXPECT_TRUE(RunUntil([] { return gtk_grab_get_current() != nullptr; }));
    GtkWidget* const menu = gtk_grab_get_current();
    window.ShotOf(menu, "chart_menu");
    gtk_menu_shell_activate_item(GTK_MENU_SHELL(menu),
                                 Find(menu, [](GtkWidget* item) { return GTK_IS_CHECK_MENU_ITEM(item); }), TRUE);
    EXPECT_TRUE(window.view.Range()) << "the first switch is for the markers";
}

TEST(ChartView, FailuresAreShown) {
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    ChartWindow window;
    const TempFolder folder;
    std::filesystem::create_directory(folder.Posix("a.png"));
    EXPECT_FALSE(window.view.SaveAs(folder.Posix("a.png").string()));
    EXPECT_FALSE(window.view.SaveAs(folder.Posix("a.xyz").string()));
    EXPECT_STREQ(qel::LastFailure().operation, "qel::WriteChartFile");
    std::string shown;
    const User user("chart_not_saved", [&](GtkDialog* dialog) {
        if (GTK_IS_FILE_CHOOSER(dialog)) {
            gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), folder.Posix("").c_str());
            gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(dialog), (std::string(250, 'a') + ".csv").c_str());
            return int{GTK_RESPONSE_ACCEPT};
        }
        char* text = nullptr;
        g_object_get(dialog, "text", &text, nullptr);
        shown = text;
        g_free(text);
        return int{GTK_RESPONSE_CLOSE};
    });
    window.Key(GDK_KEY_s, GDK_CONTROL_MASK);
    EXPECT_EQ(shown, "The chart cannot be saved");
    AtkObject* const object = gtk_widget_get_accessible(window.view.Widget());
    EXPECT_STREQ(atk_object_get_name(object), "Live curve");
    EXPECT_EQ(atk_object_get_role(object), ATK_ROLE_CHART);
}
