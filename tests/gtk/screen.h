#pragma once

#include <gtest/gtest.h>
#include <gtk/gtkunixprint.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

struct GUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Pixels = std::unique_ptr<GdkPixbuf, GUnref>;

/// What the screen shows of the widget's window. Also kept as NAME.png in $QELLIB10_SCREENSHOTS, for people to look at.
inline Pixels ScreenOf(GtkWidget* widget, const std::string& name) {
    GdkWindow* const window = gtk_widget_get_window(widget);
    Pixels pixels(
        gdk_pixbuf_get_from_window(window, 0, 0, gdk_window_get_width(window), gdk_window_get_height(window)));
    if (const char* const folder = std::getenv("QELLIB10_SCREENSHOTS")) {
        gdk_pixbuf_save(pixels.get(), (std::string(folder) + "/" + name + ".png").c_str(), "png", nullptr, nullptr);
    }
    return pixels;
}

/// A pixel as 0xRRGGBB.
inline unsigned At(const Pixels& pixels, int x, int y) {
    const guchar* const pixel = gdk_pixbuf_read_pixels(pixels.get()) + y * gdk_pixbuf_get_rowstride(pixels.get()) +
                                x * gdk_pixbuf_get_n_channels(pixels.get());
    return static_cast<unsigned>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
}

/// Lets the main loop run until @p isDone, 10 seconds at most. @return whether it was
inline bool RunUntil(const std::function<bool()>& isDone) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const guint wakeUp = g_timeout_add(
        10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    bool done = false;
    while (!(done = isDone()) && std::chrono::steady_clock::now() < end) g_main_context_iteration(nullptr, TRUE);
    g_source_remove(wakeUp);
    return done;
}

/// The first widget in @p root of which @p isIt is true.
inline GtkWidget* Find(GtkWidget* root, const std::function<bool(GtkWidget*)>& isIt) {
    if (isIt(root)) return root;
    GtkWidget* found = nullptr;
    GList* const children = GTK_IS_CONTAINER(root) ? gtk_container_get_children(GTK_CONTAINER(root)) : nullptr;
    for (GList* item = children; item != nullptr && found == nullptr; item = item->next) {
        found = Find(GTK_WIDGET(item->data), isIt);
    }
    g_list_free(children);
    return found;
}

/// Does what a user would in the next dialog that appears on the screen, as long as the object exists.
class User {
public:
    /// @param act does something about the dialog @return the answer (GTK_RESPONSE_), or 0: look again in a moment
    User(std::string picture, std::function<int(GtkDialog*)> act)
        : m_picture(std::move(picture)), m_act(std::move(act)), m_nSource(g_timeout_add(100, Look, this)) {}
    ~User() {
        g_source_remove(m_nSource);
        EXPECT_TRUE(m_isAnswered) << "no dialog";
    }
    User(const User&) = delete;
    User& operator=(const User&) = delete;

private:
    static gboolean Look(gpointer user) {
        GList* const windows = gtk_window_list_toplevels();
        for (GList* item = windows; item != nullptr; item = item->next) {
            if (GTK_IS_DIALOG(item->data) && gtk_widget_get_mapped(GTK_WIDGET(item->data))) {
                static_cast<User*>(user)->Answer(GTK_DIALOG(item->data));
                break;
            }
        }
        g_list_free(windows);
        return G_SOURCE_CONTINUE;
    }
    void Answer(GtkDialog* dialog) {
        constexpr int kPatience = 100;
        if (g_get_monotonic_time() < m_nNext) return;  // the last answer is still being considered
        int answer = m_act(dialog);
        if (answer == 0 && ++m_nLooks < kPatience) return;
        EXPECT_NE(answer, 0) << "what was waited for did not come";
        ScreenOf(GTK_WIDGET(dialog), m_picture);
        m_isAnswered = true;
        m_nNext = g_get_monotonic_time() + G_USEC_PER_SEC;
        gtk_dialog_response(dialog, answer != 0 ? answer : int{GTK_RESPONSE_CANCEL});
    }

    std::string m_picture;
    std::function<int(GtkDialog*)> m_act;
    guint m_nSource;
    int m_nLooks = 0;
    gint64 m_nNext = 0;
    bool m_isAnswered = false;
};
