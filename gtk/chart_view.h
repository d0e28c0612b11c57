#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/graph/chart_navigator.h"
#include "qellib10/graph/chart_range.h"
#include "qellib10/platform/export.h"

using GtkWidget = struct _GtkWidget;

namespace qel {

/// A widget with a chart to measure in. The wheel and pinching zoom, dragging with the left button zooms to a box, with
/// the middle button or Shift it moves the chart, a double click shows everything. Under the pointer are the values of
/// all series. Two markers measure a range; points can be left out with a reason. The menu (right button, Menu key)
/// copies, saves and prints. All of it can be done by keys (docs/gtk.md), which a cursor from point to point is for.
///
/// The chart follows the desktop: its dark theme, its scale, in whose pixels it is drawn, and the size of its texts.
/// Menus are in the language of the string table (qel::SetTableLanguage). A screen reader has the chart's title, and
/// what the cursor and the markers show.
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
    /// The chart keeps this theme, whatever the desktop has, and is printed in it.
    void SetTheme(const ChartTheme& theme);

    /// Adds points to a series from any thread; they are shown with the next frame, and those of a series that does not
    /// exist then are dropped. Must not be called during or after the destructor. For millions of points give the
    /// series a store (ChartSeries::store): it is drawn in a time that hardly depends on their number, and points that
    /// others append to it are shown as well.
    void Append(std::size_t series, std::span<const CGraphData> points);

    const ChartNavigator& Navigator() const noexcept;
    void Reset();  ///< shows everything

    /// Lets the user leave points out (ChartSeries::leftOut) and take them back by the same click, for example only one
    /// who has the right to. Switched on in the menu or by L, clicks and boxes do it; Delete does it at the cursor.
    /// @param changed is called after each change; empty: it is not allowed, as at first
    /// @param askReason for so many points, which nothing leaves as they are; empty: a dialog, which wants a text
    void AllowLeavingOut(std::function<void(std::size_t series)> changed,
                         std::function<std::optional<std::string>(std::size_t count)> askReason = {});

    /// Between the markers; nothing while they are hidden. What is in it: qel::ValuesInRange.
    const std::optional<ChartRange>& Range() const noexcept;
    /// Shows or hides the markers, without a call of the callback.
    void SetRange(const std::optional<ChartRange>& range);
    /// @param moved is called whenever the user has shown, moved or hidden them
    void SetRangeCallback(std::function<void(const std::optional<ChartRange>& range)> moved);

    /// While it is set, dragging chooses points instead of zooming: it is called with those in the box, of the first
    /// series that has any there.
    void SetChooser(std::function<void(std::size_t series, const std::vector<std::size_t>& points)> chooser);

    /// The chart without pointer and markers, as a picture in the pixels of the screen.
    /// @return false if the widget has no size yet, or the file cannot be written; qel::LastFailure has the reason
    bool SavePicture(std::string_view path);
    /// Writes the part that is shown as PNG (at least 192 dots per inch), SVG, PDF or print job, or all points as CSV,
    /// by the end of the name (qel::WriteChartFile). PDF and job are in the theme for paper.
    /// @return false like SavePicture
    bool SaveAs(std::string_view path);
    /// Shows the print dialog, and prints the part that is shown over the width of the page.
    /// @return false also if the user cancels
    bool Print();
    /// The points of all series, see qel::ChartCsv.
    std::string Csv() const;
    void CopyPicture();
    void CopyCsv();

private:
    class Parts;
    std::unique_ptr<Parts> m_pParts;
};

}  // namespace qel
