#include "qellib10/gtk/drawing_view.h"

#include <gtk/gtk.h>

#include <utility>

#include "qellib10/platform/drawing/file_dc.h"

namespace qel {

// The widget's signals. Exceptions must not pass through the toolkit.
struct DrawingView::Signals {
    static void OnSize(GtkWidget*, GdkRectangle* place, gpointer view) noexcept {
        static_cast<DrawingView*>(view)->Resize({place->width, place->height});
    }
    static gboolean OnDraw(GtkWidget*, cairo_t* cairo, gpointer view) noexcept {
        static_cast<DrawingView*>(view)->Show(cairo);
        return FALSE;
    }
};

DrawingView::DrawingView(Drawing drawing, COLORREF background)
    : m_drawing(std::move(drawing)), m_background(background), m_pWidget(gtk_drawing_area_new()) {
    g_object_ref_sink(m_pWidget);
    m_dc.CreateCompatibleDC(nullptr);
    g_signal_connect(m_pWidget, "size-allocate", G_CALLBACK(Signals::OnSize), this);
    g_signal_connect(m_pWidget, "draw", G_CALLBACK(Signals::OnDraw), this);
    gtk_widget_show(m_pWidget);
}

DrawingView::~DrawingView() {
    g_signal_handlers_disconnect_by_data(m_pWidget, this);
    g_object_unref(m_pWidget);
}

void DrawingView::Resize(const CSize& size) {
    if (size == m_size) return;
    m_size = size;
    m_picture.DeleteObject();  // the context keeps it until it has the new one
    if (m_picture.CreateBitmap(size.cx, size.cy, 1, 32, nullptr)) m_dc.SelectObject(&m_picture);
    m_isDue = true;
}

void DrawingView::Redraw() {
    m_isDue = true;
    gtk_widget_queue_draw(m_pWidget);
}

void DrawingView::DrawMore(const std::function<void(CDC& dc)>& more, const RECT* changed) {
    if (m_isDue || m_picture.GetSafeHandle() == nullptr) return;
    const int state = m_dc.SaveDC();
    more(m_dc);
    m_dc.RestoreDC(state);
    if (changed == nullptr) {
        gtk_widget_queue_draw(m_pWidget);
        return;
    }
    CRect box(*changed);
    box.NormalizeRect();
    gtk_widget_queue_draw_area(m_pWidget, box.left, box.top, box.Width(), box.Height());
}

const CBitmap& DrawingView::Picture() {
    DrawPending();
    FlushDC(m_dc);
    return m_picture;
}

void DrawingView::DrawPending() {
    if (!std::exchange(m_isDue, false) || m_picture.GetSafeHandle() == nullptr) return;
    const int state = m_dc.SaveDC();
    const CRect all(CPoint(), m_size);
    m_dc.FillSolidRect(&all, m_background);
    m_dc.SetBkColor(RGB(255, 255, 255));
    if (m_drawing) m_drawing(m_dc, m_size);
    m_dc.RestoreDC(state);
}

void DrawingView::Show(cairo_t* cairo) {
    DrawPending();
    GdkRectangle exposed;
    if (m_picture.GetSafeHandle() == nullptr || !gdk_cairo_get_clip_rectangle(cairo, &exposed)) return;
    CDC screen;
    if (!screen.Attach(CreateCairoDC(cairo, m_size))) return;
    screen.BitBlt(exposed.x, exposed.y, exposed.width, exposed.height, &m_dc, exposed.x, exposed.y);
}

}  // namespace qel
