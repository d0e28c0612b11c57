#pragma once

#include <vector>

#include "demo/curve/columns.h"
#include "demo/curve/field_rows.h"
#include "demo/curve/table_refusals.h"

namespace titration {

/// Requires that the numbers of @p table can be read in one way only.
///
/// "1,000" alone may be 1 or 1000. It is taken with a decimal comma when another number of the column shows that:
/// "0,5", or, where the column has no decimal points, one of the other column. "1.000" also when there are no whole
/// numbers in the column and no decimal commas in the other one. Where commas separate and there are no decimal points,
/// a number with a blank is refused: "0,5 215" may also be 0.5 and 215.
/// @throws Failure
void RequireOneMeaning(const Table& table, const Rows& split, const Columns& columns);

/// Requires that the last points of @p table are readings, and not lines such as "end point;value" right after them.
/// The last four points at most are in doubt, and only after four others:
///
/// - those that go back from the volume that is furthest from the first one
/// - those at more than 5 times the widest interval before them
/// - those in a line with fewer fields than each line before it
///
/// Where no names begin the table, the first points must not go back either.
/// @param isOnlyTable it can be taken as it is, by choosing it
/// @throws Failure
void RequireNoSummary(const Table& table, const std::vector<Row>& rows, const Columns& columns, bool isOnlyTable);

}  // namespace titration
