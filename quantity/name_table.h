#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

namespace qel {

/// A row of a table of values and their names in files.
template <class Value> struct Named {
    Value value;
    std::string_view name;
};
template <class Value> Named(Value, const char*) -> Named<Value>;

/// @param table has a row for each value
template <class Table, class Value> constexpr std::string_view NameIn(const Table& table, Value value) {
    return std::ranges::find(table, value, [](const auto& row) { return row.value; })->name;
}

/// @return nothing for a name that the table does not have
template <class Table> constexpr auto ValueIn(const Table& table, std::string_view name) {
    const auto row = std::ranges::find(table, name, [](const auto& each) { return each.name; });
    return row != table.end() ? std::optional(row->value) : std::nullopt;
}

/// The value of a name that starts a text, which then is without it.
/// @return nothing where no name of the table does; the text stays
template <class Table> constexpr auto TakeNameFrom(const Table& table, std::string_view& text) {
    const auto row = std::ranges::find_if(table, [&](const auto& each) { return text.starts_with(each.name); });
    if (row != table.end()) text.remove_prefix(row->name.size());
    return row != table.end() ? std::optional(row->value) : std::nullopt;
}

}  // namespace qel
