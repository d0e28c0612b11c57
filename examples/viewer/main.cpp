// A curve that grows while it is shown: a thread appends what a detector gives, the view looks with each frame. The
// rest (zoom, cursor, markers, copy, save, print) is the view's; its menu is at the right mouse button.
//
//     viewer [--points N] [--all] [--screenshot FILE]
//
// The curve starts with N points, up to 10 million; the axis shows all of them or the last minute. With a file half a
// second is measured, then the window is written to the file as PNG and closed.

#include <gtk/gtk.h>
#include <qellib10/gtk/chart_view.h>
#include <qellib10/gtk/window_picture.h>
#include <qellib10/qellib10.h>

#include <chrono>
#include <cstdio>
#include <string_view>
#include <thread>

#include "detector.h"

namespace {

struct Options {
    int points = 0;
    bool isAll = false;
    std::string screenshot;
};

bool Parse(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view name = argv[i];
        if (name == "--all") {
            options.isAll = true;
        } else if (name == "--points" && i + 1 < argc) {
            options.points = qel::ReadWholeNumber<int>(argv[++i]).value_or(-1);
        } else if (name == "--screenshot" && i + 1 < argc && *argv[i + 1] != 0) {
            options.screenshot = argv[++i];
        } else {
            return false;
        }
    }
    return options.points >= 0 && options.points <= 10'000'000;
}

qel::Chart MakeChart(Detector& detector, const Options& options) {
    qel::Chart chart;
    chart.title = "Live curve";
    chart.axes[0].title = "Time", chart.axes[0].unit = "s";
    chart.axes[1].title = "Signal", chart.axes[1].unit = "mV";
    chart.axes[0].following = options.isAll ? 0 : 60;
    chart.series.push_back({.store = std::make_shared<qel::PointStore>()});
    for (int i = 0; i < options.points; ++i) chart.series[0].store->Append(detector.Next());
    return chart;
}

}  // namespace

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // like GTK's texts
    gtk_init(&argc, &argv);
    Options options;
    if (!Parse(argc, argv, options)) {
        std::fputs("usage: viewer [--points N] [--all] [--screenshot FILE]\n", stderr);
        return 2;
    }
    Detector detector;
    qel::ChartView view(MakeChart(detector, options));
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 900, 520);
    gtk_container_add(GTK_CONTAINER(window), view.Widget());
    gtk_widget_show_all(window);

    const std::shared_ptr<qel::PointStore> points = view.Shown().series[0].store;
    const std::jthread instrument([&](const std::stop_token& stop) {
        for (auto next = std::chrono::steady_clock::now(); !stop.stop_requested();
             std::this_thread::sleep_until(next)) {
            points->Append(detector.Next());
            next += std::chrono::microseconds(1'000'000 / Detector::kPerSecond);
        }
    });
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
    const bool isShot = !options.screenshot.empty();
    if (isShot)
        g_timeout_add(
            500, [](gpointer) { return gtk_main_quit(), FALSE; }, nullptr);
    gtk_main();
    if (!isShot || qel::SaveWindowPicture(window, options.screenshot)) return 0;
    std::fprintf(stderr, "viewer: %s: %s\n", options.screenshot.c_str(), qel::LastFailure().text.c_str());
    return 1;
}
