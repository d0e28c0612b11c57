#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "demo/curve/columns.h"
#include "demo/curve/csv_table.h"
#include "demo/curve/field_rows.h"

namespace titration {

/// A table of a file, and what in it cannot be read.
struct Table {
    Curve curve;
    std::size_t unreadable = 0;  // lines with readings that cannot be read
    std::size_t firstUnreadable = 0;
    std::vector<std::size_t> lines;      // of the points, as many as volumes
    std::string volumeUnit, signalUnit;  // of the first point
    bool isMonotone = true;              // the volumes up to here
};

// Why a file gives no curve: what was found, in which line, and what to do. Each throws a Failure.

[[noreturn]] void RefuseEmptyFile();

/// No line has the columns. @param text the file's, whose encoding may be the cause
[[noreturn]] void RefuseNames(std::string_view text, const Rows& split, const Columns& columns);

/// No table has a column of this number.
[[noreturn]] void RefuseColumnNumber(const std::string& column);

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

/// A name of a column is there more than once in the line of the names.
[[noreturn]] void RefuseSameNames(const std::string& name, std::size_t line);

/// A point has another unit than the first one of its table.
[[noreturn]] void RefuseUnits(const Row& row, std::size_t line, const Table& table);

/// There are readings in @p table that cannot be read. @param text the file's, whose encoding may be the cause
[[noreturn]] void RefuseUnreadable(std::string_view text, const Table& table, const std::vector<Row>& rows,
                                   const Columns& columns);

/// The point in @p line may not be a reading of the curve. @param isOnlyTable it can be taken by choosing its table
[[noreturn]] void RefuseDoubtfulPoint(const Row& row, std::size_t line, const std::string& why, bool isOnlyTable);

/// A field, in @p line, has a sign that may be the decimal sign or set thousands apart.
[[noreturn]] void RefuseThousands(const Row& row, std::size_t line, const std::string& field);

/// A field, in @p line, may be two numbers: commas separate, and it has a blank.
[[noreturn]] void RefuseBlankInNumber(const Row& row, std::size_t line, const std::string& field);

}  // namespace titration
