// A window of GTK with a curve that grows with each reading, and closes after the last.
#include <gtk/gtk.h>
#include <qellib10/gtk/dialogs.h>
#include <qellib10/gtk/drawing_view.h>
#include <qellib10/qellib10.h>

#include <cmath>
#include <cstdio>

namespace {

constexpr int kCurve = 0, kReadings = 250;
constexpr guint kEvery = 2;  // ms

class CurveWindow {
public:
    CurveWindow() {
        m_graph.SetXMaxRange(kCurve, kReadings);
        m_graph.SetYMaxRange(kCurve, 400);
        m_graph.SetYDimStr(kCurve, "mV");
        GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
        gtk_window_set_default_size(GTK_WINDOW(window), 480, 320);
        gtk_container_add(GTK_CONTAINER(window), m_view.Widget());
        gtk_widget_show_all(window);
        g_timeout_add(kEvery, OnReading, this);
    }

    qel::DrawingView& View() { return m_view; }

private:
    static gboolean OnReading(gpointer self) { return static_cast<CurveWindow*>(self)->Take() ? TRUE : FALSE; }

    bool Take() {
        m_graph.AddData(kCurve, m_taken, 200 + 160 * std::tanh((m_taken - 165) * 0.05));
        m_view.Redraw();
        if (++m_taken < kReadings) return true;
        std::printf("%d readings\n", m_taken);
        gtk_main_quit();
        return false;
    }

    CQelGraph m_graph;
    qel::DrawingView m_view{[this](CDC& dc, const CSize& size) {
        m_graph.SetDrawSize(size.cx, size.cy);
        m_graph.GraphDraw(&dc, 0, 0);
    }};
    int m_taken = 0;
};

}  // namespace

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // as GTK's texts are
    if (!gtk_init_check(&argc, &argv) || !qel::UseGtkDialogs()) return 1;
    CurveWindow window;
    gtk_main();
    const CSize size = window.View().Size();
    if (!qel::SavePng(window.View().Picture(), "window.png")) return 1;
    std::printf("window.png: %d x %d\n", size.cx, size.cy);
    return 0;
}
