#pragma once

#include <string>
#include <vector>

#include "qellib10/print/print_table.h"
#include "qellib10/print/table_text.h"

namespace qel {

/// Tenths of a millimetre: a line of text, the space between columns, and that before the first of them.
inline constexpr int kTableRow = 31, kTableBetween = 25, kTableIndent = 10;
inline constexpr int kTableTitle = 80, kTablePlain = 70;  ///< tenths of a point

/// A text or, without one, a line across; in tenths of a millimetre in a cell of the page.
struct PlacedText {
    CRect box;
    int size = 0;  ///< tenths of a point
    std::string text;
};

/// Lays tables out one below the other, as MakeTableJobs describes.
/// @param area of a cell, for the tables
/// @return for each cell what is in it; one cell at least
std::vector<std::vector<PlacedText>> CellsOf(const std::vector<PrintTable>& tables, const std::string& continued,
                                             const CRect& area, const TableText& titles, const TableText& texts);

}  // namespace qel
