#pragma once

#include <string>
#include <string_view>

#include "qellib10/graph/chart.h"
#include "qellib10/platform/export.h"

namespace qel {

/// The points of all series as comma-separated text in UTF-8, lines ended by CR LF: a line of names, then a line for
/// the first point of each series, one for the second ... A series has two columns, x and y, named "Volume (mL)" and
/// "Sample 1 (mV)"; one with points that are left out has a third, "left out", with their reasons, or the word itself
/// where there is none. Numbers have all their digits and a point; what is no number is empty.
///
/// @code
/// qel::Chart chart;
/// chart.series.push_back({.name = "Potential", .points = {{0, 212.5}, {1, 215}}});
/// std::fputs(qel::ChartCsv(chart).c_str(), stdout);
/// @endcode
QELLIB10_API std::string ChartCsv(const Chart& chart);

/// Writes the same to a file, which is replaced as a whole, in pieces of a few kilobytes.
/// @return false if that fails; qel::LastFailure has the reason
QELLIB10_API bool WriteChartCsv(const Chart& chart, std::string_view path);

}  // namespace qel
