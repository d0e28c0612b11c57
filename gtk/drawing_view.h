#pragma once

#include <functional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/export.h"

using GtkWidget = struct _GtkWidget;
using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// A widget that shows what is drawn through a device context. The drawing is an off-screen picture, one pixel per
/// widget unit, so the window can be exposed without drawing again, and half a drawing is never visible. Lines are
/// those of a picture, wide ones too: long curves with wide pens are reduced to what each column of pixels shows.
///
/// @code
/// CQelGraph graph;
/// qel::DrawingView view([&](CDC& dc, const CSize& size) {
///     graph.SetDrawSize(size.cx, size.cy);
///     graph.GraphDraw(&dc, 0, 0);
/// });
/// GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
/// gtk_container_add(GTK_CONTAINER(window), view.Widget());
/// @endcode
///
/// Mouse events are those of the widget; their positions are those of the drawing. Everything runs in GTK's thread.
class QELLIB10_API DrawingView {
public:
    /// Draws everything on an empty picture of @p size; must not throw.
    using Drawing = std::function<void(CDC& dc, const CSize& size)>;

    /// @p drawing is called before the view is shown for the first time, after its size has changed, and after Redraw.
    explicit DrawingView(Drawing drawing, COLORREF background = RGB(255, 255, 255));
    ~DrawingView();  ///< the widget may remain in its container, with nothing to show
    DrawingView(const DrawingView&) = delete;
    DrawingView& operator=(const DrawingView&) = delete;

    /// The widget, at first of no size and without a container.
    GtkWidget* Widget() const noexcept { return m_pWidget; }
    /// 0, 0 before the widget has its size.
    CSize Size() const noexcept { return m_size; }

    /// Marks the picture as outdated: everything is drawn again before it is shown again.
    void Redraw();
    /// Draws more on the picture: new points of a curve, a cross. Skipped if everything will be drawn again anyway, so
    /// @p drawing must draw it then.
    /// @param changed the part that @p more may change; null: everything
    void DrawMore(const std::function<void(CDC& dc)>& more, const RECT* changed = nullptr);

    /// The picture, for SavePng; without a handle before the widget has its size. Pending drawing is done first.
    const CBitmap& Picture();

private:
    struct Signals;

    void Resize(const CSize& size);
    void DrawPending();
    void Show(cairo_t* cairo);

    Drawing m_drawing;
    COLORREF m_background;
    GtkWidget* m_pWidget;
    CSize m_size;
    bool m_isDue = false;  // the whole picture must be drawn again
    CDC m_dc;
    CBitmap m_picture;
};

}  // namespace qel
