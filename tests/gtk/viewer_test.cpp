// The live curve among the examples, as a program and by hand.
#include <gtest/gtest.h>
#include <qellib10/gtk/dialogs.h>

#include <cstring>
#include <fstream>

#include "../support/temp_folder.h"
#include "screen.h"
#include "viewer_window.h"

namespace {

constexpr unsigned kCurve = 0x003CA0, kCross = 0x000000;

// Counts the pixels of one colour by row and by column.
struct Count {
    Count(const Pixels& picture, unsigned color)
        : inRow(static_cast<std::size_t>(gdk_pixbuf_get_height(picture.get()))),
          inColumn(static_cast<std::size_t>(gdk_pixbuf_get_width(picture.get()))) {
        for (std::size_t y = 0; y < inRow.size(); ++y) {
            for (std::size_t x = 0; x < inColumn.size(); ++x) {
                const bool is = At(picture, static_cast<int>(x), static_cast<int>(y)) == color;
                inRow[y] += is, inColumn[x] += is;
            }
        }
    }
    std::vector<int> inRow, inColumn;
};

int ExitCode(const std::string& arguments) {
    return WEXITSTATUS(std::system((QELLIB10_VIEWER " " + arguments + " 2>/dev/null").c_str()));
}

void Click(const viewer::ViewerWindow& window, const char* label) {
    gtk_button_clicked(GTK_BUTTON(Find(window.Widget(), [&](GtkWidget* widget) {
        const char* const text = GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : nullptr;
        return text != nullptr && std::strcmp(text, label) == 0;
    })));
}

void MoveMouse(GtkWidget* view, int x, int y) {
    GdkEvent* const event = gdk_event_new(GDK_MOTION_NOTIFY);
    event->motion.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(view)));
    event->motion.x = x;
    event->motion.y = y;
    gtk_widget_event(view, event);
    gdk_event_free(event);
}

}  // namespace

TEST(Viewer, ScreenshotHoldsCurveAndCross) {
    const TempFolder folder;
    const std::string file = folder.Posix("window.png").string();
    ASSERT_EQ(ExitCode("--points 9000 --all --cross 91 --screenshot " + file), 0);
    const Pixels picture(gdk_pixbuf_new_from_file(file.c_str(), nullptr));
    ASSERT_NE(picture, nullptr);
    const Count curve(picture, kCurve), cross(picture, kCross);
    const auto holds = [](int count) { return count > 0; };
    const auto first = std::ranges::find_if(curve.inColumn, holds);
    const auto last = std::find_if(curve.inColumn.rbegin(), curve.inColumn.rend(), holds).base();
    EXPECT_GT(last - first, 800) << "three minutes fill the axis";
    EXPECT_LE(std::count(first, last, 0), 1) << "but for the cross there is a curve in each column";
    const auto top = std::ranges::find_if(curve.inRow, holds) - curve.inRow.begin();
    EXPECT_GT(*std::max_element(&cross.inRow[top - 3], &cross.inRow[top + 1]), 800) << "the cross is on the peak";

    EXPECT_EQ(ExitCode("--screenshot " + folder.Posix("no/such.png").string()), 1);
    for (const char* wrong : {"--points", "--points -1", "--points 10000001", "--cross 1s", "--screenshot ''", "-x"}) {
        EXPECT_EQ(ExitCode(wrong), 2) << wrong;
    }
}

TEST(Viewer, ACurveGrowsAndIsReadByTheMouseAndPrinted) {
    ASSERT_TRUE(qel::UseGtkDialogs());
    const TempFolder folder;
    setenv("QELLIB10_PDF_DIR", folder.Posix("").c_str(), 1);
    {
        viewer::Options options;
        options.points = 1000;
        viewer::ViewerWindow window(options);
        GtkWidget* const view = Find(window.Widget(), [](GtkWidget* widget) { return GTK_IS_DRAWING_AREA(widget); });
        GtkWidget* const label = Find(window.Widget(), [](GtkWidget* widget) {
            return GTK_IS_LABEL(widget) && !GTK_IS_BUTTON(gtk_widget_get_parent(widget)) &&
                   gtk_widget_get_ancestor(widget, GTK_TYPE_HEADER_BAR) == nullptr;
        });
        const auto text = [&] { return std::string(gtk_label_get_text(GTK_LABEL(label))); };
        ASSERT_TRUE(RunUntil([&] { return At(ScreenOf(view, "viewer"), 60, 60) == 0xFFFFFF; }));
        MoveMouse(view, 860, 200);  // past the last point
        EXPECT_EQ(text().substr(0, 5), "19.98");
        window.Start();
        EXPECT_TRUE(RunUntil([&] { return text() > "20.30"; })) << text() << ": points come in below the mouse";

        Click(window, "Pause");
        {
            const User user("viewer_print", [](GtkDialog* dialog) {
                return gtk_print_unix_dialog_get_selected_printer(GTK_PRINT_UNIX_DIALOG(dialog)) != nullptr
                           ? GTK_RESPONSE_OK
                           : 0;
            });
            Click(window, "Print...");
        }
        const std::string paused = text();
        const gint64 later = g_get_monotonic_time() + G_USEC_PER_SEC / 4;
        EXPECT_TRUE(RunUntil([&] { return g_get_monotonic_time() > later; }));
        EXPECT_EQ(text(), paused);
        MoveMouse(view, 2, 2);
        EXPECT_EQ(text(), "") << "outside the area";
    }
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(0), 0);
    const std::filesystem::directory_iterator printed(folder.Posix(""));
    ASSERT_TRUE(printed != std::filesystem::directory_iterator());
    EXPECT_GT(printed->file_size(), 5000U);
}
