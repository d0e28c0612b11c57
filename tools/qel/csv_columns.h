#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace tool {

/// Columns of numbers, all of one length; NaN where a line has no number.
struct CsvColumns {
    std::vector<std::string> names;  ///< empty texts where no line has them
    std::vector<std::vector<double>> values;
};

/// Reads columns of comma-separated text, written in any way that qel::CsvReader reads, with a point or a comma as the
/// decimal sign.
///
/// The table is the first rows after the one that has all columns that are asked for by name, from the first that has
/// a number in one of the columns to the last before one that has none. Other rows may come before and after it.
/// @param columns names, or numbers counted from 1
/// @throws Failure when a name or a number is not found, and when the text cannot be read
CsvColumns ReadCsvColumns(CFile& file, const std::vector<std::string>& columns);

}  // namespace tool
