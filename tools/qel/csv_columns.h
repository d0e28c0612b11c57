#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <qellib10/qellib10.h>

namespace tool {

/// Columns of numbers, all of one length; NaN where a line has no number.
struct CsvColumns {
    std::vector<std::string> names;  ///< empty texts where no line has them
    std::vector<std::vector<double>> values;
    std::size_t rows = 0;  ///< without gaps
};

/// What is done with the rows of a table.
struct CsvTaking {
    std::vector<std::string> columns;  ///< names, or numbers counted from 1
    /// One number for each column, NaN where the row has none; all NaN for a gap.
    std::function<void(std::span<const double> numbers)> take;
    /// A field of the column with this place in @p columns as a number; without it qel::ReadNumber.
    std::function<std::optional<double>(std::size_t column, std::string_view field)> read = {};
};

/// What was found beside the numbers.
struct CsvFindings {
    std::vector<std::string> names;  ///< of the columns; empty texts where no line has them
    std::size_t rows = 0;            ///< of the table
    std::size_t unreadable = 0;      ///< fields of the table with a text that is no number
    std::size_t below = 0;           ///< rows below the table with a number in the first column and in another one
    std::size_t firstBelow = 0;      ///< the line of the first of them
};

/// Reads columns of comma-separated text, written in any way that qel::CsvReader reads, with a point or a comma as the
/// decimal sign, row by row in constant memory. A terminal shows how far it is.
///
/// The table is the first rows after the one that has all columns that are asked for by name, from the first that has
/// a number in one of the columns to the last before one that has none. Rows of empty fields, written as separators
/// alone, are a gap, if a row follows with a number in the first column and in another one. Other rows may come before
/// and after the table.
/// @throws Failure when a name or a number is not found, and when the text cannot be read
CsvFindings ReadCsvRows(CFile& file, const CsvTaking& taking);

/// The same, as a whole.
CsvColumns ReadCsvColumns(CFile& file, const std::vector<std::string>& columns);

}  // namespace tool
