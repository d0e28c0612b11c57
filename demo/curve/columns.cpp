#include "demo/curve/columns.h"

#include <algorithm>
#include <string_view>

#include <qellib10/qellib10.h>

#include "demo/support/number.h"

namespace titration {
namespace {

bool IsAscii(std::string_view text) {
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

}  // namespace

std::optional<std::size_t> ColumnNumber(const std::string& column) {
    const auto number = ParseWholeNumber(column);
    return number && *number > 0 ? std::optional<std::size_t>(*number - 1) : std::nullopt;
}

std::optional<std::size_t> FindIn(const Row& row, const std::string& column) {
    if (const auto number = ColumnNumber(column)) return number;
    const CString plain(qel::WithPlainCharacters(column).c_str());
    const auto field = std::ranges::find_if(row, [&](const std::string& text) {
        return plain.CompareNoCase(IsAscii(text) ? text.c_str() : qel::WithPlainCharacters(text).c_str()) == 0;
    });
    return field != row.end() ? std::optional<std::size_t>(field - row.begin()) : std::nullopt;
}

bool FindNames(const Row& row, std::size_t line, Columns& columns) {
    if (!columns.haveNames) return false;
    const auto volume = FindIn(row, columns.volumeName);
    const auto signal = FindIn(row, columns.signalName);
    if (!volume || !signal) return false;
    columns.volume = *volume;
    columns.signal = *signal;
    columns.namesLine = line;
    columns.namesFields = row.size();
    return true;
}

}  // namespace titration
