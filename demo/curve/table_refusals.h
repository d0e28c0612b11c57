#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "demo/curve/columns.h"
#include "demo/curve/csv_table.h"
#include "demo/curve/field_rows.h"

namespace titration {

/// A table of a file, and what comes after its last point.
struct Table {
    Curve curve;
    std::size_t unreadable = 0;  // lines after the last point whose readings cannot be read
    std::size_t firstUnreadable = 0;
};

// Why a file gives no curve: what was found, in which line, and what to do. Each throws a Failure.

[[noreturn]] void RefuseEmptyFile();

/// No line has the columns. @param text the file's, whose encoding may be the cause
[[noreturn]] void RefuseNames(std::string_view text, const Rows& split, const Columns& columns);

/// Volume and signal are one column.
[[noreturn]] void RefuseSameColumn(const Columns& columns);

/// There are no numbers in the columns.
[[noreturn]] void RefuseNumbers(std::string_view text, const Rows& split, const Columns& columns);

/// @p row, which is line @p line, has more fields than there are names.
[[noreturn]] void RefuseUnnamedField(const Row& row, std::size_t line, const Columns& columns);

/// There is no table @p number.
[[noreturn]] void RefuseTableNumber(int number, const std::vector<Table>& tables, const Columns& columns);

/// There are several tables, and none is chosen.
[[noreturn]] void RefuseSeveralTables(const std::vector<Table>& tables, const Columns& columns);

/// The readings after the last point of @p table cannot be read.
[[noreturn]] void RefuseUnreadable(const Table& table, const std::vector<Row>& rows);

}  // namespace titration
