#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/graph/axis_places.h"
#include "qellib10/graph/chart_data.h"
#include "qellib10/graph/chart_theme.h"
#include "qellib10/platform/drawing/geometry.h"
#include "qellib10/platform/export.h"

class CDC;
class CQelPrintJobQueueData;

namespace qel {

/// A box between pixels.
struct ChartBox {
    double left = 0, top = 0, right = 0, bottom = 0;

    double Width() const noexcept { return right - left; }
    double Height() const noexcept { return bottom - top; }
    bool operator==(const ChartBox&) const noexcept = default;
    bool Overlaps(const ChartBox& other) const noexcept {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

/// A text as it was drawn.
struct ChartText {
    ChartBox box;
    std::string text = {};
};

/// Of each axis the range that a window shows, where the user has zoomed in; axes without one show all.
using ChartRanges = std::vector<std::optional<AxisRange>>;

/// What drawing a chart gave.
struct ChartReport {
    bool isDrawn = false;               ///< false without a surface, and for an empty box; qel::LastFailure says why
    ChartBox plot;                      ///< between the axes
    std::vector<ChartText> texts = {};  ///< all of them; no two overlap
    std::vector<AxisPlaces> axes =
        {};  ///< of the axes that were drawn, in their order: values from places on the surface
    std::vector<std::string> leftOut = {};  ///< what did not fit: "title", "legend", "note: ...", "values of the axes"
};

/// A chart as it is printed in a report: title, axes with round values, legend, limits, notes, uncertainties. Where
/// CQelGraph draws exactly the pixels of measured curves, a chart is for readers: edges are smooth, texts are placed so
/// that none overlaps another or is cut, and the same drawing is on the screen, in PNG, SVG and PDF, and in a print
/// job.
///
/// @code
/// qel::Chart chart;
/// chart.title = "Titration of silver nitrate";
/// chart.axes[0].title = "Volume", chart.axes[0].unit = "mL";
/// chart.axes[1].title = "Potential", chart.axes[1].unit = "mV";
/// chart.series.push_back({.name = "Sample 1", .points = {{0, 120}, {5, 180}, {10, 420}}});
/// if (!chart.WritePng("titration.png", CSize(800, 500))) return;
/// @endcode
///
/// How ticks, the legend and texts are placed, and what is left out where there is no space: docs/charts.md.
/// Drawing changes neither the chart nor the surface's pen, brush, font and colours; a chart may be drawn by several
/// threads at a time, on different surfaces. Nothing is thrown but std::bad_alloc.
class QELLIB10_API Chart {
public:
    /// With one axis below and one at the left, in the light theme.
    Chart();

    std::string title = {};
    std::string subtitle = {};
    std::vector<ChartAxis>
        axes;  ///< at most 8; further ones, and a series on an axis that does not exist, are left out
    std::vector<ChartSeries> series = {};
    std::vector<ChartLimit> limits = {};
    std::vector<ChartNote> notes = {};
    ChartTheme theme;
    bool hasLegend = true;                 ///< of all series that have a name, and of the points that are left out
    std::string leftOutText = "left out";  ///< in the legend: "left out: air bubble (2)"
    bool isSmooth = true;                  ///< false: lines and areas of whole pixels
    double scale = 1;                      ///< of texts and lines, beside the surface's resolution; 0.1 to 10

    /// Draws the chart in @p box, device units of @p dc.
    /// @param shown ranges in place of those of the axes; those that are not ranges of their axis are ignored
    ChartReport Draw(CDC& dc, const CRect& box, const ChartRanges& shown = {}) const;
    /// Adds the chart to a job, in @p box, pixels of the job's resolution (96 dots per inch if it has none). The
    /// commands are shapes and labels (docs/formats.md), which readers of jobs from before them pass over.
    ChartReport Record(CQelPrintJobQueueData& job, const CRect& box) const;

    /// Writes a picture. The same chart gives the same bytes with the same fonts.
    /// @return false if it cannot be drawn or written; qel::LastFailure has the reason
    bool WritePng(std::string_view path, const CSize& pixels, int dotsPerInch = 96) const;
    bool WriteSvg(std::string_view path, const CSize& pixels, int dotsPerInch = 96) const;
    /// @param millimetres the page
    bool WritePdf(std::string_view path, const CSize& millimetres) const;
};

}  // namespace qel
