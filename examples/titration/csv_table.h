#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace titration {

/// A measured curve in the order of its file.
struct Curve {
    std::vector<double> volume;
    std::vector<double> signal;         // potential or pH, as many as volumes
    std::size_t firstLine = 0;          // of the table in its file, counted from 1
    std::size_t lastLine = 0;           // the last line with a point
    std::size_t linesWithoutPoint = 0;  // between those two: a reading is missing there
};

/// Reads two columns of a table as instruments write them.
///
/// Fields are separated by semicolons, tabs or commas, whichever gives the most lines with two numbers. The decimal
/// sign is a point, or a comma where that does not separate. Fields may stand in quotation marks. Any lines may stand
/// above the table and below it. The table ends at a line that has a number in neither column; where a line has one of
/// the two, a reading is missing and the line is skipped.
///
/// @param volumeColumn, signalColumn a column's name, letter case ignored, or its number counted from 1. With a name,
///     the table is the first one below the first line that has it (with two names: both); with numbers alone it is
///     the longest one.
/// @throws Failure when there is no such column or no number in it
Curve ReadCurve(std::string_view text, const std::string& volumeColumn, const std::string& signalColumn);

}  // namespace titration
