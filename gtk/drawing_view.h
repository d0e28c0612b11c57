#pragma once

#include <functional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/export.h"

using GtkWidget = struct _GtkWidget;
using cairo_t = struct _cairo;  // NOLINT: its name

namespace qel {

/// A widget that shows what is drawn through a device context. The drawing stands in a picture off the screen, a pixel
/// a unit of the widget, so the window is exposed without drawing anew and nobody sees half a drawing.
///
///     qel::DrawingView view([&](CDC& dc, const CSize& size) {
///         graph.SetDrawSize(size.cx, size.cy);
///         graph.GraphDraw(&dc, 0, 0);
///     });
///     gtk_container_add(GTK_CONTAINER(window), view.Widget());
///
/// Events of the mouse are those of the widget; their positions are those of the drawing. All in GTK's thread.
class QELLIB10_API DrawingView {
public:
    /// Draws all on an empty picture of @p size; throws nothing.
    using Drawing = std::function<void(CDC& dc, const CSize& size)>;

    /// @p drawing is called when the view is about to be shown for the first time, in another size, or after Redraw.
    explicit DrawingView(Drawing drawing, COLORREF background = RGB(255, 255, 255));
    ~DrawingView();  ///< the widget may live on in its container, with nothing to show
    DrawingView(const DrawingView&) = delete;
    DrawingView& operator=(const DrawingView&) = delete;

    /// The widget, at first of no size and without a container.
    GtkWidget* Widget() const noexcept { return m_pWidget; }
    /// 0, 0 before the widget has its place.
    CSize Size() const noexcept { return m_size; }

    /// What is shown is out of date: it is drawn from the beginning before it is shown again.
    void Redraw();
    /// Draws more on what is shown: the points of a curve that have come in, a cross. Passed over when all is to be
    /// drawn anyway, so @p drawing has to draw it then.
    /// @param changed the part that @p more may change; null: everything
    void DrawMore(const std::function<void(CDC& dc)>& more, const RECT* changed = nullptr);

    /// The picture, for SavePng; without a handle before the widget has its place. What is to be drawn is drawn first.
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
    bool m_isDue = false;  // the picture has to be drawn from the beginning
    CDC m_dc;
    CBitmap m_picture;
};

}  // namespace qel
