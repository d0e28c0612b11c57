#pragma once

#include <string>
#include <vector>

#include "tool.h"

namespace tool {

/// A table on pages of A4, landscape, with a head on each of them, "page n of m", and "end of report" after the last
/// row. All rows are in memory, for the number of pages.
struct TablePdf {
    struct Column {
        const char* name;
        double width;  ///< millimetres; all of them together at most 273
    };

    std::string title;              ///< in the file's properties
    std::string headline;           ///< of the first page
    std::string continued;          ///< of the others
    std::vector<std::string> head;  ///< lines below it, on each page
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows = {};  ///< a text for each column

    /// A text as a cell takes it, so that a row has room on a page: at most 12 bytes for each millimetre. What was left
    /// out is counted.
    std::string Fitted(std::string_view text, std::size_t column) const;

    /// @throws Failure
    void Write(const std::string& path) const;
};

}  // namespace tool
