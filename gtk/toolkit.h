#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <thread>

#include "qellib10/platform/types.h"

namespace qel {

struct GObjectUnref {
    void operator()(gpointer object) const noexcept { g_object_unref(object); }
};
/// A reference to an object that is not a widget of a window.
template <class Object> using ObjectRef = std::unique_ptr<Object, GObjectUnref>;

struct GFree {
    void operator()(gpointer memory) const noexcept { g_free(memory); }
};
using GText = std::unique_ptr<char, GFree>;

/// A dialog, shown until the user responds and then destroyed.
class ModalDialog {
public:
    explicit ModalDialog(GtkWidget* dialog) : m_pWidget(GTK_WIDGET(g_object_ref(dialog))) {}
    ~ModalDialog() {
        gtk_widget_destroy(m_pWidget);
        g_object_unref(m_pWidget);
    }
    ModalDialog(const ModalDialog&) = delete;
    ModalDialog& operator=(const ModalDialog&) = delete;

    GtkWidget* Widget() const noexcept { return m_pWidget; }
    /// @return a GTK_RESPONSE_; not that of a button if something else closed it
    int Run() { return gtk_dialog_run(GTK_DIALOG(m_pWidget)); }

private:
    GtkWidget* m_pWidget;
};

/// The application's window that the user is working in; null if it has none.
inline GtkWidget* ActiveWindow() {
    GtkWidget* active = nullptr;
    GList* const windows = gtk_window_list_toplevels();
    for (GList* item = windows; item != nullptr && active == nullptr; item = item->next) {
        if (gtk_window_is_active(GTK_WINDOW(item->data))) active = GTK_WIDGET(item->data);
    }
    g_list_free(windows);
    return active;
}

/// The window of a widget, or without a widget the active one; null if there is none.
inline GtkWindow* WindowOf(HWND widget) {
    GtkWidget* const window =
        widget != nullptr ? gtk_widget_get_toplevel(static_cast<GtkWidget*>(widget)) : ActiveWindow();
    return GTK_IS_WINDOW(window) ? GTK_WINDOW(window) : nullptr;
}

/// One of GTK's own texts in the user's language, as its own dialogs show it.
inline const char* GtkText(const char* english) { return g_dgettext("gtk30", english); }

/// The thread that created it: GTK works in only one.
class OwnThread {
public:
    bool IsThis() const noexcept { return std::this_thread::get_id() == m_id; }

private:
    std::thread::id m_id = std::this_thread::get_id();
};

}  // namespace qel
