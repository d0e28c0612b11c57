#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// A measured curve in the order of its file.
struct Curve : qel::TitrationCurve {
    std::size_t firstLine = 0;          // of the table in its file, counted from 1
    std::size_t lastLine = 0;           // the last line with a point
    std::size_t linesWithoutPoint = 0;  // a reading is missing there
    int table = 0;                      // the number that was chosen, 0: the only one
};

/// Reads two columns of a table as instruments write them. A curve that is read in part gives a wrong end point, and
/// nobody notices it, so whatever could be more of the curve is read or refused.
///
/// Fields are separated as SplitAsWritten finds out, and read as qel::ReadMeasuredValue does. Any lines may come before
/// the table and after it. Blank lines, comments and other lines without a number in the two columns do not end it.
/// Another table begins where the line with the columns' names comes again, and after a line without numbers also where
/// the volumes start again. Where a line has one of the two numbers, a reading is missing and the line is skipped.
///
/// With numbers for both columns no line says where the table begins, so only these lines before it are taken as
/// headings: those without a digit in one of the columns; those with a time of day in one, or with words in both
/// ("Column 1;Column 2"), instead of numbers; and those whose numbers come after a name in a column where a table of at
/// least five points has numbers, if their volumes are far from that table's, at ten times its range. What else has
/// numbers is a table of its own, or cannot be read.
///
/// @param volumeColumn, signalColumn a column's name, letter case ignored, or its number counted from 1. With a name,
/// the table is the first one after the first line that has it (with two names: both).
/// @param table which table to read, counted from 1; 0: the only one
/// @throws Failure when there is no such column or no number in it, when there are several tables and none is chosen,
/// and when a number has two meanings (see RequireOneMeaning). When no table is chosen also when some of its readings
/// cannot be read; unless the only table is chosen, when its first or last points may not be readings (see
/// RequireNoSummary). It names the lines and what was found there.
Curve ReadCurve(std::string_view text, const std::string& volumeColumn, const std::string& signalColumn, int table = 0);

}  // namespace titration
