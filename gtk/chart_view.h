#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/graph/chart_navigator.h"
#include "qellib10/platform/export.h"

using GtkWidget = struct _GtkWidget;

namespace qel {

/// A widget with a chart to measure in: the wheel and pinching zoom, dragging with the left button zooms to a box, with
/// the middle button or Shift it moves the chart; a double click or Home shows everything. Under the pointer it shows
/// the values of all series. Keys: + and - zoom, arrows move, Escape ends a box; Ctrl+C copies the picture,
/// Ctrl+Shift+C the values as CSV.
///
/// The chart follows the desktop: its dark theme, and its scale, in whose pixels it is drawn.
///
/// @code
/// qel::Chart chart;
/// chart.series.push_back({.name = "Potential"});
/// qel::ChartView view(chart);
/// GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
/// gtk_container_add(GTK_CONTAINER(window), view.Widget());
/// view.Append(0, std::vector<CGraphData>{{0, 212}, {1, 215}});  // from any thread
/// @endcode
///
/// Everything but Append runs in GTK's thread.
class QELLIB10_API ChartView {
public:
    explicit ChartView(Chart chart);
    ~ChartView();  ///< the widget may remain in its container, with nothing to show
    ChartView(const ChartView&) = delete;
    ChartView& operator=(const ChartView&) = delete;

    /// The widget, at first of no size and without a container.
    GtkWidget* Widget() const noexcept;

    const Chart& Shown() const noexcept;
    /// Changes the chart and shows it again. Its theme is replaced by the desktop's unless SetTheme was called.
    void Edit(const std::function<void(Chart& chart)>& change);
    /// The chart keeps this theme, whatever the desktop has.
    void SetTheme(const ChartTheme& theme);

    /// Adds points to a series from any thread; they are shown with the next frame, and those of a series that does not
    /// exist then are dropped. Must not be called during or after the destructor.
    void Append(std::size_t series, std::span<const CGraphData> points);

    const ChartNavigator& Navigator() const noexcept;
    void Reset();  ///< shows everything

    /// While it is set, dragging chooses points instead of zooming: it is called with those in the box, of the first
    /// series that has any there.
    void SetChooser(std::function<void(std::size_t series, const std::vector<std::size_t>& points)> chooser);

    /// What is shown, as a picture in the pixels of the screen.
    /// @return false if the widget has no size yet, or the file cannot be written; qel::LastFailure has the reason
    bool SavePicture(std::string_view path);
    /// The points of all series, see qel::ChartCsv.
    std::string Csv() const;
    void CopyPicture();
    void CopyCsv();

private:
    class Parts;
    std::unique_ptr<Parts> m_pParts;
};

}  // namespace qel
