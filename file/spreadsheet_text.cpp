#include "qellib10/file/spreadsheet_text.h"

namespace qel {

std::string SpreadsheetText(std::string_view text) {
    const bool isGuarded = !text.empty() && std::string_view("=+-@\t\r'").find(text[0]) != std::string_view::npos;
    return std::string(isGuarded ? "'" : "").append(text);
}

}  // namespace qel
