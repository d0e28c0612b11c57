#include "viewer_window.h"

#include "curve_printer.h"

namespace viewer {
namespace {

constexpr int kWidth = 900, kHeight = 520;
constexpr guint kEvery = 40;  // ms between checks for new points

}  // namespace

// The widgets' signals.
struct ViewerWindow::Signals {
    static ViewerWindow& Of(gpointer window) { return *static_cast<ViewerWindow*>(window); }

    static gboolean OnTimer(gpointer window) {
        Of(window).TakePoints();
        return G_SOURCE_CONTINUE;
    }
    static gboolean OnMotion(GtkWidget*, GdkEventMotion* event, gpointer window) {
        Of(window).SetMouse(CPoint(static_cast<int>(event->x), static_cast<int>(event->y)));
        return FALSE;
    }
    static gboolean OnLeave(GtkWidget*, GdkEventCrossing*, gpointer window) {
        Of(window).SetMouse(std::nullopt);
        return FALSE;
    }
    static void OnAll(GtkToggleButton* button, gpointer window) {
        Of(window).m_curve.ShowAll(gtk_toggle_button_get_active(button) != FALSE);
        Of(window).FitAndRedraw();
    }
    static void OnPause(GtkToggleButton* button, gpointer window) {
        if (auto& sampler = Of(window).m_sampler) sampler->Pause(gtk_toggle_button_get_active(button) != FALSE);
    }
    static void OnPrint(GtkButton*, gpointer window) { Of(window).Print(); }
};

ViewerWindow::ViewerWindow(const Options& options)
    : m_view([this](CDC& dc, const CSize& size) { Draw(dc, size); }),
      m_pWindow(gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      m_pValues(GTK_WIDGET(g_object_ref_sink(gtk_label_new(nullptr)))) {
    for (int i = 0; i < options.points; ++i) m_curve.Add(m_detector.NextPoint());
    m_curve.ShowAll(options.isAll);
    FitAndRedraw();
    if (options.cross) SetCross(m_curve.Nearest(*options.cross));

    GtkWidget* const view = m_view.Widget();
    gtk_widget_add_events(view, GDK_POINTER_MOTION_MASK | GDK_LEAVE_NOTIFY_MASK);
    g_signal_connect(view, "motion-notify-event", G_CALLBACK(Signals::OnMotion), this);
    g_signal_connect(view, "leave-notify-event", G_CALLBACK(Signals::OnLeave), this);
    g_signal_connect(m_pWindow, "destroy", G_CALLBACK(gtk_widget_destroyed), &m_pWindow);

    gtk_window_set_default_size(GTK_WINDOW(m_pWindow), kWidth, kHeight);
    gtk_window_set_titlebar(GTK_WINDOW(m_pWindow), MakeHeader(options.isAll));
    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_pack_start(GTK_BOX(box), view, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), m_pValues, FALSE, FALSE, 6);
    gtk_container_add(GTK_CONTAINER(m_pWindow), box);
    gtk_widget_show_all(m_pWindow);
}

ViewerWindow::~ViewerWindow() {
    if (m_nTimer != 0) g_source_remove(m_nTimer);
    g_signal_handlers_disconnect_by_data(m_view.Widget(), this);
    if (m_pWindow != nullptr) gtk_widget_destroy(m_pWindow);
    g_object_unref(m_pValues);
}

GtkWidget* ViewerWindow::MakeHeader(bool isAll) {
    GtkWidget* const header = gtk_header_bar_new();
    gtk_header_bar_set_title(GTK_HEADER_BAR(header), "Live curve");
    gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(header), TRUE);
    const auto add = [&](GtkWidget* button, const char* signal, GCallback callback) {
        g_signal_connect(button, signal, callback, this);
        gtk_header_bar_pack_start(GTK_HEADER_BAR(header), button);
    };
    GtkWidget* const all = gtk_toggle_button_new_with_label("All");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(all), isAll ? TRUE : FALSE);
    add(all, "toggled", G_CALLBACK(Signals::OnAll));
    add(gtk_toggle_button_new_with_label("Pause"), "toggled", G_CALLBACK(Signals::OnPause));
    add(gtk_button_new_with_label("Print..."), "clicked", G_CALLBACK(Signals::OnPrint));
    return header;
}

void ViewerWindow::Start() {
    m_sampler.emplace([this] { return m_detector.NextPoint(); }, Detector::kCodesPerSecond);
    m_nTimer = g_timeout_add(kEvery, Signals::OnTimer, this);
}

void ViewerWindow::Draw(CDC& dc, const CSize& size) {
    m_curve.SetDrawSize(size.cx, size.cy);
    m_curve.GraphDraw(&dc, 0, 0);
    InvertCross(dc);
}

void ViewerWindow::TakePoints() {
    const std::vector<CGraphData> points = m_sampler->Take();
    if (points.empty()) return;
    for (const CGraphData& point : points) m_curve.Add(point);
    FitAndRedraw();
}

// A redraw reads each point once, in some nanoseconds, so even a curve of millions is drawn again each time.
void ViewerWindow::FitAndRedraw() {
    m_curve.FitAxes();
    m_view.Redraw();
    if (m_mouse) SetMouse(m_mouse);  // other points came below it
}

void ViewerWindow::SetMouse(std::optional<CPoint> mouse) {
    m_mouse = mouse;
    SetCross(mouse ? m_curve.Nearest(*mouse) : std::nullopt);
}

void ViewerWindow::SetCross(std::optional<CGraphData> cross) {
    m_view.DrawMore([&](CDC& dc) {
        InvertCross(dc);
        m_cross = cross;
        InvertCross(dc);
    });
    m_cross = cross;  // also when the whole view is drawn
    CString text;
    if (cross) text.Format("%.2f s     %.2f mV", cross->GetXData(), cross->GetYData());
    gtk_label_set_text(GTK_LABEL(m_pValues), text);
}

// Drawn twice, it disappears.
void ViewerWindow::InvertCross(CDC& dc) {
    if (m_cross) m_curve.DrawCrossPoint(&dc, 0, m_cross->GetXData(), m_cross->GetYData());
}

void ViewerWindow::Print() {
    if (PrintCurve(m_curve) != Printing::kFailed) return;
    GtkWidget* const message = gtk_message_dialog_new(GTK_WINDOW(m_pWindow), GTK_DIALOG_MODAL, GTK_MESSAGE_ERROR,
                                                      GTK_BUTTONS_CLOSE, "The printer does not take the curve.");
    gtk_dialog_run(GTK_DIALOG(message));
    gtk_widget_destroy(message);
}

}  // namespace viewer
