#pragma once

#include <initializer_list>
#include <sstream>
#include <string>
#include <type_traits>

/// One value as text, for Line.
struct LineItem {
    template <typename T> LineItem(const T& value) {  // implicit, so that a list may mix types
        std::ostringstream out;
        if constexpr (std::is_integral_v<T>) {
            out << +value;  // a byte is a number
        } else {
            out << value;
        }
        text = out.str();
    }
    std::string text;
};

/// Results of several calls, made from left to right, as one text: "1 0 1" shows which of them failed, a sum does not.
inline std::string Line(std::initializer_list<LineItem> items) {
    std::string line;
    for (const LineItem& item : items) line += item.text + ' ';
    if (!line.empty()) line.pop_back();
    return line;
}
