#include "qellib10/gtk/chart_scene.h"

#include <algorithm>
#include <utility>

#include "qellib10/gtk/desktop_theme.h"
#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/png_file.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr int kScreenDots = 96;
constexpr gint64 kQuick = 5000;  // microseconds: measuring a range is not noticed
constexpr int kRest = 4;         // times as long as measuring a range took, before it is measured again

}  // namespace

ChartScene::ChartScene(Chart shown, GtkWidget* widget)
    : chart(std::move(shown)), m_pWidget(widget), m_textScale(TextScale()) {}

void ChartScene::Redraw() {
    m_isDue = true;
    m_areLinesStale = true;
    RedrawOver();
}

void ChartScene::RedrawOver() { gtk_widget_queue_draw(m_pWidget); }

void ChartScene::LookForPoints() {
    std::size_t stored = 0;
    for (const ChartSeries& each : chart.series) stored += each.store != nullptr ? each.store->Count() : 0;
    if (std::exchange(m_stored, stored) != stored) Redraw();
}

void ChartScene::SetTheme(const ChartTheme& theme) {
    m_hasOwnTheme = true;
    chart.theme = theme;
    Redraw();
}

double ChartScene::TextScale() const {
    const double dots = gdk_screen_get_resolution(gtk_widget_get_screen(m_pWidget));
    return dots > 0 ? std::clamp(dots / kScreenDots, 0.5, 4.0) : 1;
}

void ChartScene::Follow() {
    if (std::exchange(m_textScale, TextScale()) != m_textScale) Redraw();
    const bool isDark = IsDesktopDark(m_pWidget);
    if (m_hasOwnTheme || m_isDark == isDark) return;
    m_isDark = isDark;
    const std::string face = chart.theme.face;
    chart.theme = isDark ? ChartTheme::Dark() : ChartTheme::Light();
    chart.theme.face = face;
    Redraw();
}

void ChartScene::Edited() {
    m_isDark.reset();
    Follow();
    Describe();
    Redraw();
}

double ChartScene::Dots() const { return kScreenDots * m_scale * m_textScale * chart.scale; }

void ChartScene::DrawPending() {
    const int factor = gtk_widget_get_scale_factor(m_pWidget);
    const CSize pixels(gtk_widget_get_allocated_width(m_pWidget) * factor,
                       gtk_widget_get_allocated_height(m_pWidget) * factor);
    if (pixels != m_size || factor != m_scale) {
        m_size = pixels;
        m_scale = factor;
        m_isDue = true;
        m_dc.DeleteDC();
        m_picture.DeleteObject();
        m_dc.CreateCompatibleDC(nullptr);
        if (m_picture.CreateBitmap(m_size.cx, m_size.cy, 1, 32, nullptr)) m_dc.SelectObject(&m_picture);
    }
    if (!std::exchange(m_isDue, false) || m_picture.GetSafeHandle() == nullptr) return;
    const double own = chart.scale;
    chart.scale = own * m_scale * m_textScale;
    const ChartReport report = chart.Draw(m_dc, CRect(CPoint(0, 0), m_size), navigator.Shown());
    chart.scale = own;
    if (report.isDrawn) navigator.Take(chart, report);
}

void ChartScene::Show(cairo_t* cairo, const std::function<void(CDC& screen)>& over) {
    DrawPending();
    if (m_picture.GetSafeHandle() == nullptr) return;
    cairo_save(cairo);
    cairo_scale(cairo, 1.0 / m_scale, 1.0 / m_scale);
    {
        CDC screen;
        if (screen.Attach(CreateCairoDC(cairo, m_size))) {
            screen.BitBlt(0, 0, m_size.cx, m_size.cy, &m_dc, 0, 0);
            over(screen);
        }
    }
    cairo_restore(cairo);
    if (!gtk_widget_has_visible_focus(m_pWidget)) return;
    gtk_render_focus(gtk_widget_get_style_context(m_pWidget), cairo, 0, 0, gtk_widget_get_allocated_width(m_pWidget),
                     gtk_widget_get_allocated_height(m_pWidget));
}

bool ChartScene::AreRangeLinesDue() const {
    return markers.Range() && m_areLinesStale && g_get_monotonic_time() >= m_linesDue;
}

const std::vector<ChartRangeLine>& ChartScene::RangeLines() {
    if (!markers.Range()) return m_rangeLines.clear(), m_rangeLines;
    if (m_range == markers.Range() && !AreRangeLinesDue()) return m_rangeLines;
    if (g_get_monotonic_time() < m_linesDue) {  // of another range: no values until then
        m_areLinesStale = true;
        return m_rangeLines.clear(), m_rangeLines;
    }
    const gint64 start = g_get_monotonic_time();
    m_range = markers.Range();
    m_rangeLines = LinesOfRange(chart, navigator, *m_range);
    m_areLinesStale = false;
    const gint64 end = g_get_monotonic_time();
    m_linesDue = end - start < kQuick ? end : end + kRest * (end - start);
    return m_rangeLines;
}

bool ChartScene::SavePicture(std::string_view path) {
    Operation running("qel::ChartView::SavePicture");
    DrawPending();
    FlushDC(m_dc);
    return running.Ended(SavePng(m_picture, FromUtf8(path).c_str(), kScreenDots * m_scale) != 0);
}

ObjectRef<GdkPixbuf> ChartScene::Pixels() {
    DrawPending();
    if (m_picture.GetSafeHandle() == nullptr) return nullptr;
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, m_size.cx, m_size.cy);
    cairo_t* const cairo = cairo_create(surface);
    {
        CDC copy;
        if (copy.Attach(CreateCairoDC(cairo, m_size))) copy.BitBlt(0, 0, m_size.cx, m_size.cy, &m_dc, 0, 0);
    }
    cairo_destroy(cairo);
    ObjectRef<GdkPixbuf> pixels(gdk_pixbuf_get_from_surface(surface, 0, 0, m_size.cx, m_size.cy));
    cairo_surface_destroy(surface);
    return pixels;
}

void ChartScene::Describe() {
    AtkObject* const object = gtk_widget_get_accessible(m_pWidget);
    atk_object_set_role(object, ATK_ROLE_CHART);
    atk_object_set_name(object, chart.title.empty() ? "chart" : chart.title.c_str());
    std::string series;
    for (const ChartSeries& each : chart.series) series += (series.empty() ? "" : ", ") + each.name;
    atk_object_set_description(object, series.c_str());
}

void ChartScene::Announce(const std::string& text) {
    AtkObject* const object = gtk_widget_get_accessible(m_pWidget);
    atk_object_set_description(object, text.c_str());
    // Only newer versions of the interface have it.
    if (g_signal_lookup("announcement", ATK_TYPE_OBJECT) != 0)
        g_signal_emit_by_name(object, "announcement", text.c_str());
}

}  // namespace qel
