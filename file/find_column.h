#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

// How people name the columns of a table: by a name in one of its rows, or by a number.
namespace qel {

/// The column with this number, from 0: "1" is the first one. Decimal digits alone are a number, with blanks and tabs
/// around them. A number without such a column, as "0" and one that is too large, gives a place that no row has.
/// @return nothing for a name
QELLIB10_API std::optional<std::size_t> ColumnNumber(std::string_view column);

/// The place in @p row, from 0, of the column that @p column names. A number is taken as it is (ColumnNumber), whether
/// the row has so many fields or not, and is never looked for as a name. Of names the first field with exactly this
/// text is taken, else the first that looks the same: without regard to the case of the letters A to Z and with plain
/// characters (WithPlainCharacters), so "vol µL" finds "Vol μL". Blanks and tabs around both do not count.
///
/// @code
/// const std::vector<std::string> names = {"Time/s", "Vol µL", "pH"};
/// const auto volume = qel::FindColumn(names, "vol µL");  // 1
/// @endcode
///
/// Where two fields have one name, the first is taken; a caller who has to be sure looks in the fields after it too.
/// @param row fields in UTF-8
/// @return nothing when no field has this name
QELLIB10_API std::optional<std::size_t> FindColumn(std::span<const std::string_view> row, std::string_view column);
QELLIB10_API std::optional<std::size_t> FindColumn(std::span<const std::string> row, std::string_view column);

}  // namespace qel
