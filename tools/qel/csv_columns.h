#pragma once

#include <string>
#include <vector>

namespace tool {

/// Columns of numbers, all equally long; NaN where a line has no number.
struct CsvColumns {
    std::vector<std::string> names;  ///< empty texts where no line has them
    std::vector<std::vector<double>> values;
};

/// Reads columns of comma-separated text. Fields may stand in quotation marks, doubled within them. Semicolons or tabs
/// separate where that gives more lines of numbers; then a comma may be the decimal sign.
///
/// The table is the first lines below the one that has all columns that are asked for by name, from the first that has
/// a number in one of the columns to the last before one that has none. Other lines may stand above and below it.
/// @param columns names, or numbers counted from 1
/// @throws Failure when a name or a number is not to be found
CsvColumns ReadCsvColumns(const std::string& utf8, const std::vector<std::string>& columns);

}  // namespace tool
