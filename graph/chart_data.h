#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/graph/axis_ticks.h"
#include "qellib10/graph/graph_data.h"
#include "qellib10/graph/point_store.h"
#include "qellib10/platform/drawing/drawing_types.h"

// What a chart shows. All texts are UTF-8.
namespace qel {

enum class ChartSide { kBottom, kLeft, kTop, kRight };

/// A range of an axis that is left out.
struct ChartBreak {
    double from = 0;
    double to = 0;
};

/// An axis. Several axes of one side are next to each other, the first one at the plot.
struct ChartAxis {
    ChartSide side = ChartSide::kBottom;
    std::string title = {};
    std::string unit = {};  ///< after the title in brackets
    ChartScale scale = ChartScale::kLinear;
    std::optional<double> low = {};   ///< a fixed end; without it the data decide, with some space around them
    std::optional<double> high = {};  ///< if it is not above low, both are ignored
    /// Above 0: without a fixed high end the axis ends at the highest value and is this long, as on a strip recorder.
    double following = 0;
    /// Ranges that are left out, of a linear axis or one of times, at most 8. Each is a gap in the axis with two
    /// slanted strokes; curves and bars are cut at it. One at an end moves the end.
    std::vector<ChartBreak> breaks = {};
    bool isReversed = false;  ///< low values at the right or upper end, as wavenumbers are shown
    /// A prefix is only before a unit that takes one, "V" or "g/L"; before "m²", "mV", "%" or none there is a power.
    ChartExponent exponent = ChartExponent::kPower;
    ChartClock clock = ChartClock::kUtc;
    std::vector<std::string> categories = {};  ///< of values 0, 1, 2, ...
    std::optional<bool> hasGrid = {};        ///< without it: the first horizontal and the first vertical axis have one
    std::optional<std::size_t> sameAs = {};  ///< the axis has the range and breaks of this one
    bool hasSeriesColor = false;             ///< its line and texts have the colour of the first series on it
};

enum class ChartMark {
    kAuto,  ///< one after the other for points, none for lines
    kNone,
    kCircle,
    kSquare,
    kTriangle,
    kDiamond,
    kTriangleDown,
    kPlus,
    kCross,
    kStar,
    kPentagon,
    kHexagon,
    kOpenCircle,
    kOpenSquare
};

enum class ChartDash { kAuto, kSolid, kDash, kDot, kDashDot, kLongDash };

enum class ChartKind {
    kLine,
    kSteps,   ///< each value holds until the next one
    kPoints,  ///< marks only
    kBars,    ///< from the base; bars at the same x are side by side, or stacked
    kArea,    ///< a line, filled to the base
    kBand     ///< filled between y and ChartSeries::lower
};

/// Of each point: how far it may be off. Empty: none.
struct ChartErrors {
    std::vector<double> down = {};
    std::vector<double> up = {};  ///< empty: the same as down

    /// Of a point; 0 for one without an error, and for what is no number above 0.
    double DownAt(std::size_t point) const noexcept { return At(down, point); }
    double UpAt(std::size_t point) const noexcept { return At(up.empty() ? down : up, point); }

private:
    static double At(const std::vector<double>& errors, std::size_t point) noexcept {
        return point < errors.size() && errors[point] > 0 ? errors[point] : 0;
    }
};

/// A point that does not count, and why: it is drawn as a grey mark apart from the line, which leads past it.
struct ChartLeftOut {
    std::size_t point = 0;    ///< in ChartSeries::points; one that does not exist is ignored
    std::string reason = {};  ///< in the legend, with the number of points
};

/// A row of points. A point whose x or y is not a number, or not above 0 on a logarithmic axis, is a gap.
struct ChartSeries {
    std::string name = {};  ///< in the legend; empty: not there
    ChartKind kind = ChartKind::kLine;
    std::vector<CGraphData> points = {};
    std::shared_ptr<PointStore> store = {};  ///< if there is one, its points are shown and `points` are not
    std::size_t xAxis = 0;                   ///< in Chart::axes; a horizontal one
    std::size_t yAxis = 1;                   ///< a vertical one
    std::vector<ChartLeftOut> leftOut = {};  ///< in any order
    std::vector<double> lower = {};          ///< of a band: its other edge at each point
    ChartErrors xErrors = {};
    ChartErrors yErrors = {};
    bool hasErrorBand = false;  ///< the y errors are a band, not bars
    bool hasDrops = false;      ///< a line from each point to the base
    double base = 0;            ///< of bars, areas and drops; on a logarithmic axis its low end
    bool isStacked = false;     ///< bars stand on those of the stacked series before it
    std::optional<COLORREF> color = {};
    std::optional<std::size_t> colorOf = {};  ///< without a colour: it has that of this series
    double width = 0;                         ///< of the line, points; 0: the theme's
    ChartDash dash = ChartDash::kAuto;
    ChartMark mark = ChartMark::kAuto;
};

/// A line across the plot at a value of an axis, or a band between two values.
struct ChartLimit {
    std::size_t axis = 1;
    double from = 0;
    std::optional<double> to = {};
    std::string label = {};
    std::optional<COLORREF> color = {};  ///< without contrast to the plot it is made lighter or darker
};

/// A text with an arrow to a place.
struct ChartNote {
    double x = 0;
    double y = 0;
    std::string text = {};
    std::size_t xAxis = 0;
    std::size_t yAxis = 1;
    bool isFlag = false;  ///< an end point: with lines to both axes and a mark
};

}  // namespace qel
