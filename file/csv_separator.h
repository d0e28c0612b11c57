#pragma once

#include <string_view>

#include "qellib10/file/csv_row_scanner.h"

namespace qel {

/// The separator of a table that starts with @p sample. Tries semicolons, tabs, commas, bars and runs of blanks, and
/// takes the one with the most rows of two measured values. If several are equal, it takes the one that cuts fewer
/// numbers, then the first. Where no row has two values, the first that is there at all counts; where there is none,
/// the semicolon.
/// @param isAll whether the table ends with the sample
/// @param syntax how fields are written, but for the separator
char FindSeparator(std::string_view sample, bool isAll, CsvSyntax syntax);

}  // namespace qel
