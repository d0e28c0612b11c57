#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

/// The words of a text that are parted by blanks.
inline std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}
