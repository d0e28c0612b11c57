// A curve that grows while it is shown: a thread reads a detector, the window takes the points several times a second,
// the axes follow, a cross follows the mouse along the curve, and the curve can be printed.

#include <cstdio>

#include <gtk/gtk.h>
#include <qellib10/gtk/dialogs.h>

#include "screenshot.h"
#include "viewer_window.h"

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // like GTK's texts
    const bool isOnScreen = gtk_init_check(&argc, &argv) != FALSE && qel::UseGtkDialogs();
    const auto options = viewer::ParseOptions(argc, argv);
    if (!options) {
        std::fputs("usage: viewer [--points N] [--all] [--cross SECONDS] [--screenshot FILE]\n", stderr);
        return 2;
    }
    if (!isOnScreen) {
        std::fputs("viewer: there is no screen\n", stderr);
        return 1;
    }
    viewer::ViewerWindow window(*options);
    if (!options->screenshot.empty()) {
        if (viewer::SaveScreenshot(window.Widget(), options->screenshot)) return 0;
        std::fprintf(stderr, "viewer: %s cannot be written\n", options->screenshot.c_str());
        return 1;
    }
    g_signal_connect(window.Widget(), "destroy", G_CALLBACK(gtk_main_quit), nullptr);
    window.Start();
    gtk_main();
    return 0;
}
