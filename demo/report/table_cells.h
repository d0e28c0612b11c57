#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>
#include <qellib10/quantity.h>

#include "demo/report/report_printer.h"

namespace titration {

/// A text or, without one, a line across; in tenths of a millimetre in a cell of the page.
struct PlacedText {
    CRect box;
    int size = 0;  ///< tenths of a point
    std::string text;
};

/// Lays tables out one below the other, over as many cells of a page as they need. Nothing is cut: what is too wide for
/// its column has several lines, and a table that goes on in the next cell has its title and the names of its columns
/// there again. A column without any text is left out.
/// @param area of a cell, for the tables
/// @return for each cell what is in it
std::vector<std::vector<PlacedText>> CellsOf(const std::vector<qel::TraceTable>& tables, const CRect& area,
                                             ReportPrinter& printer);

}  // namespace titration
