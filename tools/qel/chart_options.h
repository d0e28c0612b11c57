#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "picture.h"

namespace tool {

/// The command line of `qel plot`.
struct PlotOptions {
    std::string file, x = "1";
    std::vector<std::string> y = {"2"};
    std::string xRange, yRange, size = "160x100";
    bool bars = false, marks = false, json = false;
    PictureOptions picture;
    bool isSizeGiven = false, isResolutionGiven = false;

    // Of charts alone.
    std::string theme = "light", log, legend, format, title, subtitle;
    std::vector<std::string> errors, limits, breaks;
    bool isChart = false, steps = false, points = false, reverseX = false, utc = false;
};

/// Adds the options that make a chart. @return them
std::vector<CLI::Option*> AddChartOptions(CLI::App& command, PlotOptions& options);

/// Of --format. @throws CLI::ValidationError where the suffix of the picture is that of another one
std::optional<PictureKind> ParseFormat(const PlotOptions& options);

/// The ends of an axis, in the order in which they were given.
struct ChartEnds {
    std::pair<double, double> ends;
    bool isTime = false;  ///< seconds since 1970-01-01 00:00 UTC
    bool isLocal = false;

    double Low() const { return std::min(ends.first, ends.second); }
    double High() const { return std::max(ends.first, ends.second); }
    bool IsReversed() const { return ends.first > ends.second; }
};

/// "0:14", or times of ISO 8601, "2026-11-28T10:00/2026-11-28T12:00". Nothing for the empty text.
/// @param isUtc times without a zone are UTC, else local time
/// @throws CLI::ValidationError
std::optional<ChartEnds> ParseEnds(const std::string& text, bool isUtc);

/// "7.5", or "7.5:upper limit". @throws CLI::ValidationError
qel::ChartLimit ParseLimit(const std::string& text);

/// "800x500": pixels of PNG and SVG, millimetres of PDF; "800x500px" and "160x100mm" say it.
/// @return the page, at the resolution at which it is drawn
/// @throws CLI::ValidationError
qel::PageSetup ParseChartSize(const PlotOptions& options);

/// A heading and the unit at its end, in brackets: "Volume [mL]", "Volume (mL)".
struct Heading {
    std::string title, unit;
};
Heading SplitHeading(const std::string& text);

}  // namespace tool
