#pragma once

#include <string_view>

namespace qel {

/// A line on the debugger's output, once in the life of the process, for a text that is drawn in code page 932 and has
/// the form of UTF-8: source files are in UTF-8, and their µ, ° and umlauts come out as other characters. Two katakana
/// of half a width have this form now and then, so the text is drawn as what it is.
void NoticeUtf8(std::string_view text);

}  // namespace qel
