#pragma once

#include <string_view>

namespace qel {

/// Writes a line to the debugger's output, once per process, when a text drawn in code page 932 looks like UTF-8:
/// source files are in UTF-8, and their µ, ° and umlauts come out as other characters. Two half-width katakana look
/// like that now and then, so the text is still drawn in code page 932.
void NoticeUtf8(std::string_view text);

}  // namespace qel
