#include "qellib10/gtk/chart_view.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>
#include <utility>

#include "qellib10/graph/chart_csv.h"
#include "qellib10/gtk/desktop_theme.h"
#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/png_file.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr double kWheelFactor = 1.2, kKeyFactor = 1.4, kKeyStep = 40;
constexpr int kScreenDots = 96;

}  // namespace

// The widget, its picture and what the pointer does.
class ChartView::Parts {
public:
    explicit Parts(Chart shown) : chart(std::move(shown)), widget(gtk_drawing_area_new()) {
        g_object_ref_sink(widget);
        gtk_widget_set_can_focus(widget, TRUE);
        gtk_widget_add_events(widget, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK |
                                          GDK_LEAVE_NOTIFY_MASK | GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK |
                                          GDK_KEY_PRESS_MASK | GDK_TOUCHPAD_GESTURE_MASK);
        pinch.reset(gtk_gesture_zoom_new(widget));
        Connect("draw", G_CALLBACK(OnDraw));
        Connect("size-allocate", G_CALLBACK(OnSize));
        Connect("notify::scale-factor", G_CALLBACK(OnLook));
        Connect("style-updated", G_CALLBACK(OnStyle));
        Connect("scroll-event", G_CALLBACK(OnScroll));
        Connect("button-press-event", G_CALLBACK(OnPress));
        Connect("button-release-event", G_CALLBACK(OnRelease));
        Connect("motion-notify-event", G_CALLBACK(OnMotion));
        Connect("leave-notify-event", G_CALLBACK(OnLeave));
        Connect("key-press-event", G_CALLBACK(OnKey));
        g_signal_connect(pinch.get(), "begin", G_CALLBACK(OnPinchBegin), this);
        g_signal_connect(pinch.get(), "scale-changed", G_CALLBACK(OnPinch), this);
        frames = gtk_widget_add_tick_callback(widget, OnFrame, this, nullptr);
        TakeTheme();
        Describe();
        gtk_widget_show(widget);
    }
    ~Parts() {
        gtk_widget_remove_tick_callback(widget, frames);
        g_signal_handlers_disconnect_by_data(pinch.get(), this);
        g_signal_handlers_disconnect_by_data(widget, this);
        pinch.reset();
        g_object_unref(widget);
    }
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    void Redraw() {
        isDue = true;
        gtk_widget_queue_draw(widget);
    }

    // For screen readers.
    void Describe() {
        AtkObject* const object = gtk_widget_get_accessible(widget);
        atk_object_set_name(object, chart.title.empty() ? "chart" : chart.title.c_str());
        std::string series;
        for (const ChartSeries& each : chart.series) series += (series.empty() ? "" : ", ") + each.name;
        atk_object_set_description(object, series.c_str());
    }

    void DrawPending() {
        const int factor = gtk_widget_get_scale_factor(widget);
        const CSize pixels(gtk_widget_get_allocated_width(widget) * factor,
                           gtk_widget_get_allocated_height(widget) * factor);
        if (pixels != size || factor != scale) {
            size = pixels;
            scale = factor;
            isDue = true;
            CBitmap former;
            dc.DeleteDC();
            picture.DeleteObject();
            dc.CreateCompatibleDC(nullptr);
            if (picture.CreateBitmap(size.cx, size.cy, 1, 32, nullptr)) dc.SelectObject(&picture);
        }
        if (!std::exchange(isDue, false) || picture.GetSafeHandle() == nullptr) return;
        const double own = chart.scale;
        chart.scale = own * scale;
        const ChartReport report = chart.Draw(dc, CRect(CPoint(0, 0), size), navigator.Shown());
        chart.scale = own;
        if (report.isDrawn) navigator.Take(chart, report);
    }

    void Show(cairo_t* cairo) {
        DrawPending();
        if (picture.GetSafeHandle() == nullptr) return;
        cairo_save(cairo);
        cairo_scale(cairo, 1.0 / scale, 1.0 / scale);
        CDC screen;
        if (screen.Attach(CreateCairoDC(cairo, size))) {
            screen.BitBlt(0, 0, size.cx, size.cy, &dc, 0, 0);
            if (box) ShowBox(screen);
            if (pointer && !box) ShowValues(screen);
        }
        cairo_restore(cairo);
    }

    Chart chart;
    GtkWidget* widget;
    ChartNavigator navigator;
    std::function<void(std::size_t, const std::vector<std::size_t>&)> chooser;
    bool hasOwnTheme = false;
    std::optional<bool> isDark;  // the theme that the chart has
    CDC dc;
    CBitmap picture;
    CSize size;
    int scale = 1;

    std::mutex lock;  // of what Append has left for the next frame
    std::vector<std::pair<std::size_t, std::vector<CGraphData>>> waiting;

    void TakeTheme() {
        if (hasOwnTheme || isDark == IsDesktopDark(widget)) return;
        isDark = IsDesktopDark(widget);
        const std::string face = chart.theme.face;
        chart.theme = *isDark ? ChartTheme::Dark() : ChartTheme::Light();
        chart.theme.face = face;
        Redraw();
    }

private:
    static Parts& Of(gpointer parts) { return *static_cast<Parts*>(parts); }
    void Connect(const char* signal, GCallback step) { g_signal_connect(widget, signal, step, this); }

    ShapePoint Place(double x, double y) const { return {x * scale, y * scale}; }
    void Changed(bool isChanged) {
        if (isChanged) Redraw();
    }

    static gboolean OnDraw(GtkWidget*, cairo_t* cairo, gpointer parts) noexcept {
        Of(parts).Show(cairo);
        return FALSE;
    }
    static void OnSize(GtkWidget*, GdkRectangle*, gpointer parts) noexcept { Of(parts).isDue = true; }
    static void OnLook(GtkWidget*, GParamSpec*, gpointer parts) noexcept { Of(parts).Redraw(); }
    static void OnStyle(GtkWidget*, gpointer parts) noexcept { Of(parts).TakeTheme(); }

    static gboolean OnFrame(GtkWidget*, GdkFrameClock*, gpointer parts) noexcept {
        Of(parts).TakeWaiting();
        Of(parts).TakeTheme();  // not every change of it has a signal here
        return G_SOURCE_CONTINUE;
    }
    void TakeWaiting() {
        decltype(waiting) taken;
        {
            const std::scoped_lock guard(lock);
            taken.swap(waiting);
        }
        for (const auto& [series, points] : taken) {
            if (series >= chart.series.size()) continue;
            std::vector<CGraphData>& all = chart.series[series].points;
            all.insert(all.end(), points.begin(), points.end());
        }
        if (!taken.empty()) Redraw();
    }

    static ChartDirection DirectionOf(guint state) {
        if ((state & GDK_SHIFT_MASK) != 0) return ChartDirection::kX;
        return (state & GDK_CONTROL_MASK) != 0 ? ChartDirection::kY : ChartDirection::kBoth;
    }

    static gboolean OnScroll(GtkWidget*, GdkEventScroll* event, gpointer data) noexcept {
        Parts& parts = Of(data);
        double steps = event->direction == GDK_SCROLL_UP ? 1 : event->direction == GDK_SCROLL_DOWN ? -1 : 0;
        if (event->direction == GDK_SCROLL_SMOOTH) steps = -event->delta_y;
        parts.Changed(parts.navigator.ZoomAt(parts.Place(event->x, event->y), std::pow(kWheelFactor, steps),
                                             DirectionOf(event->state)));
        return TRUE;
    }

    static void OnPinchBegin(GtkGesture*, GdkEventSequence*, gpointer parts) noexcept { Of(parts).pinched = 1; }
    static void OnPinch(GtkGestureZoom* gesture, double pinchScale, gpointer data) noexcept {
        Parts& parts = Of(data);
        double x = 0, y = 0;
        if (!gtk_gesture_get_bounding_box_center(GTK_GESTURE(gesture), &x, &y)) return;
        parts.Changed(parts.navigator.ZoomAt(parts.Place(x, y), pinchScale / parts.pinched));
        parts.pinched = pinchScale;
    }

    static gboolean OnPress(GtkWidget* widget, GdkEventButton* event, gpointer data) noexcept {
        Parts& parts = Of(data);
        gtk_widget_grab_focus(widget);
        if (event->type == GDK_2BUTTON_PRESS) {
            parts.box.reset();
            parts.navigator.Reset();
            parts.Redraw();
            return TRUE;
        }
        const ShapePoint at = parts.Place(event->x, event->y);
        if (event->type != GDK_BUTTON_PRESS || !parts.navigator.IsInPlot(at)) return FALSE;
        const bool isPan = event->button == GDK_BUTTON_MIDDLE || (event->state & GDK_SHIFT_MASK) != 0;
        if (isPan) {
            parts.panned = at;
        } else if (event->button == GDK_BUTTON_PRIMARY) {
            parts.box = ChartBox{at.x, at.y, at.x, at.y};
        }
        return TRUE;
    }

    static gboolean OnRelease(GtkWidget*, GdkEventButton*, gpointer data) noexcept {
        Parts& parts = Of(data);
        parts.panned.reset();
        if (!parts.box) return FALSE;
        const ChartBox box = *std::exchange(parts.box, {});
        if (parts.chooser) {
            parts.Choose(box);
        } else {
            parts.navigator.ZoomTo(box);
        }
        parts.Redraw();
        return TRUE;
    }
    void Choose(const ChartBox& chosen) {
        for (std::size_t i = 0; i < chart.series.size(); ++i) {
            const std::vector<std::size_t> points = navigator.PointsIn(chart, i, chosen);
            if (points.empty()) continue;
            chooser(i, points);
            return;
        }
    }

    static gboolean OnMotion(GtkWidget* widget, GdkEventMotion* event, gpointer data) noexcept {
        Parts& parts = Of(data);
        const ShapePoint at = parts.Place(event->x, event->y);
        if (parts.panned) {
            parts.Changed(parts.navigator.PanBy(at.x - parts.panned->x, at.y - parts.panned->y));
            parts.DrawPending();  // the next step starts from the places of this one
            parts.panned = at;
        }
        if (parts.box) parts.box = ChartBox{parts.box->left, parts.box->top, at.x, at.y};
        parts.pointer = parts.navigator.IsInPlot(at) ? std::optional(at) : std::nullopt;
        gtk_widget_queue_draw(widget);
        return TRUE;
    }
    static gboolean OnLeave(GtkWidget* widget, GdkEventCrossing*, gpointer parts) noexcept {
        Of(parts).pointer.reset();
        gtk_widget_queue_draw(widget);
        return FALSE;
    }

    static gboolean OnKey(GtkWidget*, GdkEventKey* event, gpointer data) noexcept {
        Parts& parts = Of(data);
        const bool isControl = (event->state & GDK_CONTROL_MASK) != 0, isShift = (event->state & GDK_SHIFT_MASK) != 0;
        const double step = kKeyStep * parts.scale;
        const ShapePoint middle{double(parts.size.cx) / 2, double(parts.size.cy) / 2};
        switch (event->keyval) {
            case GDK_KEY_plus:
            case GDK_KEY_KP_Add:
                parts.Changed(parts.navigator.ZoomAt(middle, kKeyFactor));
                return TRUE;
            case GDK_KEY_minus:
            case GDK_KEY_KP_Subtract:
                parts.Changed(parts.navigator.ZoomAt(middle, 1 / kKeyFactor));
                return TRUE;
            case GDK_KEY_Left:
                parts.Changed(parts.navigator.PanBy(step, 0));
                return TRUE;
            case GDK_KEY_Right:
                parts.Changed(parts.navigator.PanBy(-step, 0));
                return TRUE;
            case GDK_KEY_Up:
                parts.Changed(parts.navigator.PanBy(0, step));
                return TRUE;
            case GDK_KEY_Down:
                parts.Changed(parts.navigator.PanBy(0, -step));
                return TRUE;
            case GDK_KEY_Home:
                parts.navigator.Reset();
                parts.Redraw();
                return TRUE;
            case GDK_KEY_Escape:
                parts.box.reset();
                parts.Redraw();
                return TRUE;
            case GDK_KEY_c:
            case GDK_KEY_C:
                if (!isControl) return FALSE;
                isShift ? parts.CopyCsv() : parts.CopyPicture();
                return TRUE;
            default:
                return FALSE;
        }
    }

    void ShowBox(CDC& screen) {
        const std::vector<ShapePoint> corners = {
            {box->left, box->top}, {box->right, box->top}, {box->right, box->bottom}, {box->left, box->bottom}};
        DrawShape(
            screen, corners,
            {.fill = chart.theme.palette.empty() ? chart.theme.text : chart.theme.palette.front(), .opacity = 0.2});
        DrawShape(screen, corners, {.stroke = chart.theme.axis, .strokeWidth = double(scale), .isClosed = true});
    }

    void ShowPoint(CDC& screen, const ShapePoint& at) {
        if (!navigator.IsInPlot(at)) return;
        const double half = 3.5 * scale;
        const std::vector<ShapePoint> corners = {{at.x - half, at.y - half},
                                                 {at.x + half, at.y - half},
                                                 {at.x + half, at.y + half},
                                                 {at.x - half, at.y + half}};
        DrawShape(screen, corners, {.stroke = chart.theme.text, .strokeWidth = 1.5 * scale, .isClosed = true});
    }

    // A line through the pointer, and a box with the values of all series beside it.
    void ShowValues(CDC& screen) {
        const std::vector<ChartNavigator::Value> values = navigator.ValuesAt(chart, pointer->x);
        const double dots = kScreenDots * scale, gap = 6 * scale;
        const LabelStyle style{chart.theme.face, chart.theme.labelSize, chart.theme.text};
        double width = 0, height = 0;
        for (const ChartNavigator::Value& value : values) {
            const LabelSize text = MeasureLabel(value.text, style, dots);
            width = std::max(width, text.width);
            height += text.Height();
        }
        const double x = std::floor(pointer->x) + 0.5;
        const std::vector<ShapePoint> line = {{x, navigator.Plot().top}, {x, navigator.Plot().bottom}};
        DrawShape(screen, line, {.stroke = chart.theme.axis, .strokeWidth = double(scale), .opacity = 0.5});
        if (values.empty()) return;
        for (const ChartNavigator::Value& value : values) ShowPoint(screen, value.at);
        const bool isLeft = pointer->x + 3 * gap + width > size.cx;
        const double left = isLeft ? pointer->x - 3 * gap - width : pointer->x + gap;
        const double top = std::clamp(pointer->y - height - gap, 0.0, std::max(0.0, size.cy - height - 2 * gap));
        const double right = left + width + 2 * gap, bottom = top + height + gap;
        const std::vector<ShapePoint> corners = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
        DrawShape(screen, corners, {.fill = chart.theme.background, .opacity = 0.92});
        DrawShape(screen, corners, {.stroke = chart.theme.axis, .strokeWidth = double(scale), .isClosed = true});
        double y = top + gap / 2;
        for (const ChartNavigator::Value& value : values) {
            const LabelSize text = MeasureLabel(value.text, style, dots);
            DrawLabel(screen, {left + gap, y + text.ascent}, value.text, style, dots);
            y += text.Height();
        }
    }

public:
    void CopyCsv() {
        const std::string text = ChartCsv(chart);
        gtk_clipboard_set_text(gtk_widget_get_clipboard(widget, GDK_SELECTION_CLIPBOARD), text.data(),
                               static_cast<int>(text.size()));
    }
    void CopyPicture() {
        DrawPending();
        if (picture.GetSafeHandle() == nullptr) return;
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.cx, size.cy);
        cairo_t* const cairo = cairo_create(surface);
        {
            CDC copy;
            if (copy.Attach(CreateCairoDC(cairo, size))) copy.BitBlt(0, 0, size.cx, size.cy, &dc, 0, 0);
        }
        cairo_destroy(cairo);
        const ObjectRef<GdkPixbuf> pixels(gdk_pixbuf_get_from_surface(surface, 0, 0, size.cx, size.cy));
        cairo_surface_destroy(surface);
        if (pixels) gtk_clipboard_set_image(gtk_widget_get_clipboard(widget, GDK_SELECTION_CLIPBOARD), pixels.get());
    }

private:
    ObjectRef<GtkGesture> pinch;
    guint frames = 0;
    double pinched = 1;
    bool isDue = true;
    std::optional<ShapePoint> pointer;  // in the plot
    std::optional<ShapePoint> panned;   // where the pointer was
    std::optional<ChartBox> box;        // that is being dragged
};

ChartView::ChartView(Chart chart) : m_pParts(std::make_unique<Parts>(std::move(chart))) {}
ChartView::~ChartView() = default;

GtkWidget* ChartView::Widget() const noexcept { return m_pParts->widget; }
const Chart& ChartView::Shown() const noexcept { return m_pParts->chart; }
const ChartNavigator& ChartView::Navigator() const noexcept { return m_pParts->navigator; }

void ChartView::Edit(const std::function<void(Chart& chart)>& change) {
    change(m_pParts->chart);
    m_pParts->isDark.reset();
    m_pParts->TakeTheme();
    m_pParts->Describe();
    m_pParts->Redraw();
}

void ChartView::SetTheme(const ChartTheme& theme) {
    m_pParts->hasOwnTheme = true;
    m_pParts->chart.theme = theme;
    m_pParts->Redraw();
}

void ChartView::Append(std::size_t series, std::span<const CGraphData> points) {
    const std::scoped_lock guard(m_pParts->lock);
    m_pParts->waiting.emplace_back(series, std::vector(points.begin(), points.end()));
}

void ChartView::Reset() {
    m_pParts->navigator.Reset();
    m_pParts->Redraw();
}

void ChartView::SetChooser(std::function<void(std::size_t, const std::vector<std::size_t>&)> chooser) {
    m_pParts->chooser = std::move(chooser);
}

bool ChartView::SavePicture(std::string_view path) {
    Operation running("qel::ChartView::SavePicture");
    m_pParts->DrawPending();
    FlushDC(m_pParts->dc);
    return running.Ended(SavePng(m_pParts->picture, FromUtf8(path).c_str(), kScreenDots * m_pParts->scale) != 0);
}

std::string ChartView::Csv() const { return ChartCsv(m_pParts->chart); }
void ChartView::CopyPicture() { m_pParts->CopyPicture(); }
void ChartView::CopyCsv() { m_pParts->CopyCsv(); }

}  // namespace qel
