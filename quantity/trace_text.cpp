#include <algorithm>
#include <string>
#include <vector>

#include "qellib10/platform/text/printable_text.h"
#include "qellib10/quantity/trace.h"

namespace qel {
namespace {

// Columns of a text in a font of equal widths: East Asian characters have two.
std::size_t WidthOf(std::string_view utf8) {
    std::size_t width = 0;
    for (const char character : utf8) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & 0xC0U) == 0x80U) continue;
        width += byte >= 0xE3 && byte < 0xEF ? 2 : 1;  // from U+3000 on
    }
    return width;
}

// A formula may have lines of its own.
std::string OnOneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return PrintableText(text);
}

std::string Lines(const TraceTable& table) {
    std::vector<std::vector<std::string>> rows = table.rows;
    if (!table.columns.empty()) rows.insert(rows.begin(), table.columns);
    for (auto& row : rows)
        for (std::string& cell : row) cell = OnOneLine(cell);
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], WidthOf(row[i]));
    }
    std::string text = OnOneLine(table.title) + '\n';
    for (const auto& row : rows) {
        std::string line = " ";
        for (std::size_t i = 0; i < row.size(); ++i)
            line += ' ' + row[i] + std::string(widths[i] - WidthOf(row[i]) + 1, ' ');
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

}  // namespace

std::string Trace::Text(TraceLanguage language) const {
    std::string text;
    for (const TraceTable& table : Tables(language)) text += (text.empty() ? "" : "\n") + Lines(table);
    return text;
}

}  // namespace qel
