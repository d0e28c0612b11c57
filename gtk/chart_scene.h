#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/graph/chart_cursor.h"
#include "qellib10/graph/chart_markers.h"
#include "qellib10/graph/chart_navigator.h"
#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/drawing/dc.h"

namespace qel {

/// The chart of a widget: its picture in the screen's pixels, and what is over it. It follows the desktop's theme and
/// scale, and knows no events. Places are in the screen's pixels.
class ChartScene {
public:
    /// @param widget lives longer
    ChartScene(Chart shown, GtkWidget* widget);
    ChartScene(const ChartScene&) = delete;
    ChartScene& operator=(const ChartScene&) = delete;

    Chart chart;
    ChartNavigator navigator;
    ChartMarkers markers;
    ChartCursor cursor;                 // by keys
    std::optional<ShapePoint> pointer;  // of the mouse, in the plot
    std::optional<ChartBox> box;        // that is being dragged
    std::string hint;                   // at the lower edge of the plot: what a click does now

    GtkWidget* Widget() const { return m_pWidget; }
    void Redraw();         ///< the chart, before the next frame
    void RedrawOver();     ///< only what is over it
    void LookForPoints();  ///< that others have added to stores
    /// Keeps the theme, whatever the desktop has.
    void SetTheme(const ChartTheme& theme);
    /// Takes the desktop's theme and the size of its texts, if they have changed.
    void Follow();
    void Edited();  ///< the chart may have another theme and other names now

    void DrawPending();
    /// @param over draws what is over the chart
    void Show(cairo_t* cairo, const std::function<void(CDC& screen)>& over);

    CSize Size() const { return m_size; }
    double Scale() const { return m_scale; }  ///< pixels per unit of the widget
    double Dots() const;                      ///< per inch, for texts
    ShapePoint Place(double x, double y) const { return {x * m_scale, y * m_scale}; }
    bool HasOwnTheme() const { return m_hasOwnTheme; }

    /// The measured range in words. Of many points it is not computed in each frame.
    const std::vector<ChartRangeLine>& RangeLines();
    bool AreRangeLinesDue() const;

    bool SavePicture(std::string_view path);
    ObjectRef<GdkPixbuf> Pixels();

    void Describe();  ///< for screen readers
    /// Has a screen reader say something now.
    void Announce(const std::string& text);

private:
    double TextScale() const;

    GtkWidget* m_pWidget;
    bool m_isDue = true;
    bool m_hasOwnTheme = false;
    std::optional<bool> m_isDark;  // the theme that the chart has
    CDC m_dc;
    CBitmap m_picture;
    CSize m_size;
    int m_scale = 1;
    double m_textScale = 1;
    std::size_t m_stored = 0;  // points in the stores of all series

    std::vector<ChartRangeLine> m_rangeLines;
    std::optional<ChartRange> m_range;  // of the lines
    bool m_areLinesStale = false;
    gint64 m_linesDue = 0;  // when they may be computed again, microseconds
};

}  // namespace qel
