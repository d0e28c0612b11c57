#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "demo/curve/field_rows.h"

namespace titration {

/// The two columns of a curve, and where they are in its table.
struct Columns {
    std::string volumeName, signalName;
    std::size_t volume = 0, signal = 0;
    bool haveNames = false;
    std::size_t namesLine = 0, namesFields = 0;  // the line with the names, 0: none

    std::string Text() const { return "\"" + volumeName + "\" and \"" + signalName + "\""; }
};

/// From 0; of a name nothing.
std::optional<std::size_t> ColumnNumber(const std::string& column);

/// Where @p row has a column, from 0: a number as it is, a name without regard to the case of letters.
std::optional<std::size_t> FindIn(const Row& row, const std::string& column);

/// Whether @p row, which is line @p line, names the columns; they are there from then on. The names are in one line; a
/// single one may also be further up, as in "pH;7.01".
bool FindNames(const Row& row, std::size_t line, Columns& columns);

}  // namespace titration
