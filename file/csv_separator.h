#pragma once

#include <string_view>

#include "qellib10/file/csv_row_scanner.h"

namespace qel {

/// The separator of a table that starts with @p sample: of semicolons, tabs, commas, bars and runs of blanks the one
/// that gives the most rows with two measured values; of several the one that cuts fewer numbers into pieces, then the
/// first. Where no row has two values, the first that is there at all counts; where there is none, the semicolon.
/// @param isAll whether the table ends with the sample
/// @param syntax how fields are written, but for the separator
char FindSeparator(std::string_view sample, bool isAll, CsvSyntax syntax);

}  // namespace qel
