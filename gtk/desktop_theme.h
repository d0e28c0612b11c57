#pragma once

#include <gtk/gtk.h>

namespace qel {

/// Whether windows are dark: by the theme's own background, which its name need not tell.
inline bool IsDesktopDark(GtkWidget* widget) {
    GtkStyleContext* const style = gtk_widget_get_style_context(widget);
    GdkRGBA background;
    if (!gtk_style_context_lookup_color(style, "theme_bg_color", &background)) return false;
    // ITU-R BT.709
    return 0.2126 * background.red + 0.7152 * background.green + 0.0722 * background.blue < 0.5;
}

}  // namespace qel
