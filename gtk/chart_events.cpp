#include "qellib10/gtk/chart_events.h"

#include <cmath>
#include <utility>

#include "qellib10/gtk/chart_keys.h"

namespace qel {
namespace {

constexpr double kWheel = 1.2;
constexpr double kReach = 6;  // of the pointer to a marker, units of the widget

ChartDirection DirectionOf(guint state) {
    if ((state & GDK_SHIFT_MASK) != 0) return ChartDirection::kX;
    return (state & GDK_CONTROL_MASK) != 0 ? ChartDirection::kY : ChartDirection::kBoth;
}

}  // namespace

// The widget's signals. Exceptions must not pass through the toolkit.
struct ChartEvents::Signals {
    static ChartEvents& Of(gpointer events) { return *static_cast<ChartEvents*>(events); }

    static gboolean OnScroll(GtkWidget*, GdkEventScroll* event, gpointer self) noexcept {
        return Of(self).Scroll(*event) ? TRUE : FALSE;
    }
    static void OnPinchBegin(GtkGesture*, GdkEventSequence*, gpointer self) noexcept { Of(self).m_pinched = 1; }
    static void OnPinch(GtkGestureZoom*, gdouble scale, gpointer self) noexcept { Of(self).Pinch(scale); }
    static gboolean OnPress(GtkWidget* widget, GdkEventButton* event, gpointer self) noexcept {
        gtk_widget_grab_focus(widget);
        return Of(self).Press(*event) ? TRUE : FALSE;
    }
    static gboolean OnRelease(GtkWidget*, GdkEventButton*, gpointer self) noexcept {
        return Of(self).Release() ? TRUE : FALSE;
    }
    static gboolean OnMotion(GtkWidget*, GdkEventMotion* event, gpointer self) noexcept {
        Of(self).Move(Of(self).m_scene.Place(event->x, event->y));
        return TRUE;
    }
    static gboolean OnLeave(GtkWidget*, GdkEventCrossing*, gpointer self) noexcept {
        Of(self).Leave();
        return FALSE;
    }
    static gboolean OnKey(GtkWidget*, GdkEventKey* event, gpointer self) noexcept {
        const auto command = CommandOf(*event);
        if (!command || !Of(self).m_actions.IsOffered(*command)) return FALSE;
        Of(self).m_actions.Run(*command);
        return TRUE;
    }
    static gboolean OnMenu(GtkWidget* widget, gpointer self) noexcept {
        Of(self).m_menu.Open(widget, nullptr);
        return TRUE;
    }
};

ChartEvents::ChartEvents(ChartScene& scene, ChartActions& actions)
    : m_scene(scene), m_actions(actions), m_menu(actions), m_pinch(gtk_gesture_zoom_new(scene.Widget())) {
    GtkWidget* const widget = scene.Widget();
    gtk_widget_set_can_focus(widget, TRUE);
    gtk_widget_add_events(widget, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK |
                                      GDK_LEAVE_NOTIFY_MASK | GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK |
                                      GDK_KEY_PRESS_MASK | GDK_TOUCHPAD_GESTURE_MASK);
    const auto connect = [&](const char* signal, GCallback step) { g_signal_connect(widget, signal, step, this); };
    connect("scroll-event", G_CALLBACK(Signals::OnScroll));
    connect("button-press-event", G_CALLBACK(Signals::OnPress));
    connect("button-release-event", G_CALLBACK(Signals::OnRelease));
    connect("motion-notify-event", G_CALLBACK(Signals::OnMotion));
    connect("leave-notify-event", G_CALLBACK(Signals::OnLeave));
    connect("key-press-event", G_CALLBACK(Signals::OnKey));
    connect("popup-menu", G_CALLBACK(Signals::OnMenu));
    g_signal_connect(m_pinch.get(), "begin", G_CALLBACK(Signals::OnPinchBegin), this);
    g_signal_connect(m_pinch.get(), "scale-changed", G_CALLBACK(Signals::OnPinch), this);
}

ChartEvents::~ChartEvents() {
    g_signal_handlers_disconnect_by_data(m_pinch.get(), this);
    g_signal_handlers_disconnect_by_data(m_scene.Widget(), this);
}

bool ChartEvents::Scroll(const GdkEventScroll& event) {
    double steps = event.direction == GDK_SCROLL_UP ? 1 : event.direction == GDK_SCROLL_DOWN ? -1 : 0;
    if (event.direction == GDK_SCROLL_SMOOTH) steps = -event.delta_y;
    m_actions.Changed(
        m_scene.navigator.ZoomAt(m_scene.Place(event.x, event.y), std::pow(kWheel, steps), DirectionOf(event.state)));
    return true;
}

void ChartEvents::Pinch(double scale) {
    double x = 0, y = 0;
    if (gtk_gesture_get_bounding_box_center(m_pinch.get(), &x, &y) == FALSE) return;
    m_actions.Changed(m_scene.navigator.ZoomAt(m_scene.Place(x, y), scale / std::exchange(m_pinched, scale)));
}

bool ChartEvents::Press(const GdkEventButton& event) {
    if (gdk_event_triggers_context_menu(reinterpret_cast<const GdkEvent*>(&event)) != FALSE) {
        m_menu.Open(m_scene.Widget(), reinterpret_cast<const GdkEvent*>(&event));
        return true;
    }
    if (event.type == GDK_2BUTTON_PRESS && m_actions.IsBoxForZoom()) {
        m_scene.box.reset();
        m_actions.Run(ChartCommand::kShowAll);
        return true;
    }
    const ShapePoint at = m_scene.Place(event.x, event.y);
    if (event.type != GDK_BUTTON_PRESS || !m_scene.navigator.IsInPlot(at)) return false;
    const bool isPan = event.button == GDK_BUTTON_MIDDLE || (event.state & GDK_SHIFT_MASK) != 0;
    if (isPan) {
        m_panned = at;
    } else if (event.button == GDK_BUTTON_PRIMARY) {
        m_scene.cursor.Hide();
        m_isMarker = m_scene.markers.Grab(m_scene.chart, m_scene.navigator, at.x, kReach * m_scene.Scale());
        if (!m_isMarker) m_scene.box = ChartBox{at.x, at.y, at.x, at.y};
    }
    return true;
}

bool ChartEvents::Release() {
    m_panned.reset();
    m_isMarker = false;
    if (!m_scene.box) return false;
    m_actions.Take(*std::exchange(m_scene.box, {}));
    return true;
}

void ChartEvents::Move(const ShapePoint& at) {
    if (m_panned) {
        m_actions.Changed(m_scene.navigator.PanBy(at.x - m_panned->x, at.y - m_panned->y));
        m_panned = at;
    }
    if (m_isMarker) m_actions.RangeChanged(m_scene.markers.MoveTo(m_scene.chart, m_scene.navigator, at.x));
    if (m_scene.box) m_scene.box = ChartBox{m_scene.box->left, m_scene.box->top, at.x, at.y};
    m_scene.pointer = m_scene.navigator.IsInPlot(at) ? std::optional(at) : std::nullopt;
    ShowShape(at);
    m_scene.RedrawOver();
}

void ChartEvents::Leave() {
    m_scene.pointer.reset();
    m_scene.RedrawOver();
}

// The pointer shows what can be dragged.
void ChartEvents::ShowShape(const ShapePoint& at) {
    const auto places = m_scene.markers.PlacesIn(m_scene.chart, m_scene.navigator);
    const double reach = kReach * m_scene.Scale();
    const bool isWide =
        m_isMarker || (places && m_scene.navigator.IsInPlot(at) &&
                       (std::fabs(places->from - at.x) <= reach || std::fabs(places->to - at.x) <= reach));
    if (std::exchange(m_isShapeWide, isWide) == isWide) return;
    GdkWindow* const window = gtk_widget_get_window(m_scene.Widget());
    const ObjectRef<GdkCursor> shape(isWide ? gdk_cursor_new_from_name(gdk_window_get_display(window), "ew-resize")
                                            : nullptr);
    gdk_window_set_cursor(window, shape.get());
}

}  // namespace qel
