#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include <qellib10/qellib10.h>

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

using qel::ColumnNumber;

inline std::optional<std::size_t> FindIn(const Row& row, const std::string& column) {
    return qel::FindColumn(std::span(row), column);
}

/// Whether @p row, which is line @p line, names the columns; then it sets where they are. The names are in one line; a
/// single one may also be in an earlier line, as in "pH;7.01".
bool FindNames(const Row& row, std::size_t line, Columns& columns);

}  // namespace titration
