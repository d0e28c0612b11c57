#include "screenshot.h"

#include <memory>

namespace viewer {
namespace {

// Drawn again instead of read from the screen, where other windows may cover it.
bool Save(GtkWidget* window, const char* path) {
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> picture(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, gtk_widget_get_allocated_width(window),
                                   gtk_widget_get_allocated_height(window)),
        cairo_surface_destroy);
    const std::unique_ptr<cairo_t, void (*)(cairo_t*)> cairo(cairo_create(picture.get()), cairo_destroy);
    gtk_widget_draw(window, cairo.get());
    return cairo_surface_write_to_png(picture.get(), path) == CAIRO_STATUS_SUCCESS;
}

}  // namespace

bool SaveScreenshot(GtkWidget* window, const std::string& path) {
    bool isDrawn = false;
    g_signal_connect_after(window, "draw", G_CALLBACK(+[](GtkWidget*, cairo_t*, bool* drawn) -> gboolean {
                               *drawn = true;
                               return FALSE;
                           }),
                           &isDrawn);
    while (!isDrawn) g_main_context_iteration(nullptr, TRUE);
    g_signal_handlers_disconnect_by_data(window, &isDrawn);
    return Save(window, path.c_str());
}

}  // namespace viewer
