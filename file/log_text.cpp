#include "qellib10/file/log_text.h"

#include <algorithm>

namespace qel {

std::string LogDump(std::span<const unsigned char> bytes) {
    constexpr std::size_t kBytesPerLine = 16;
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    while (!bytes.empty()) {
        const auto line = bytes.first(std::min(kBytesPerLine, bytes.size()));
        for (const unsigned char byte : line) ((text += kDigits[byte >> 4]) += kDigits[byte & 0xF]) += ' ';
        text += ' ';
        text.append(line.begin(), line.end());
        text += "\r\n";
        bytes = bytes.subspan(line.size());
    }
    return text;
}

}  // namespace qel
