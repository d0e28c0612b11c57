#include "qellib10/gtk/window_picture.h"

#include <gtk/gtk.h>

#include <memory>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/png_file.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr int kScreenDots = 96;

bool Save(GtkWidget* widget, const std::string& path) {
    if (!gtk_widget_get_mapped(widget)) return Refuse(FailureKind::kState, "", "the widget is not shown") != 0;
    const int scale = gtk_widget_get_scale_factor(widget);
    const CSize size(gtk_widget_get_allocated_width(widget) * scale, gtk_widget_get_allocated_height(widget) * scale);
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> drawn(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.cx, size.cy), cairo_surface_destroy);
    cairo_surface_set_device_scale(drawn.get(), scale, scale);
    const std::unique_ptr<cairo_t, void (*)(cairo_t*)> cairo(cairo_create(drawn.get()), cairo_destroy);
    gtk_widget_draw(widget, cairo.get());
    cairo_surface_flush(drawn.get());
    CBitmap picture;  // its rows are as long as the surface's
    return picture.CreateBitmap(size.cx, size.cy, 1, 32, cairo_image_surface_get_data(drawn.get())) &&
           SavePng(picture, FromUtf8(path).c_str(), kScreenDots * scale) != 0;
}

}  // namespace

bool SaveWindowPicture(GtkWidget* widget, std::string_view path) {
    Operation running("qel::SaveWindowPicture");
    return running.Ended(Save(widget, std::string(path)));
}

}  // namespace qel
