#pragma once

#include <string>

#include "qellib10/platform/text/string_table.h"

namespace qel {

/// A text of the chart's window in the languages of the string table; UTF-8, as GTK's texts are.
struct ChartWord {
    const char* english;
    const char* japanese;
};

inline const char* Say(const ChartWord& word) {
    return TableLanguage() == Language::Japanese ? word.japanese : word.english;
}

}  // namespace qel
