#pragma once

#include <span>
#include <string>

namespace qel {

/// @p bytes in the form of the log's dumps: lines of 16 bytes, each as two hexadecimal digits and a blank, then a blank
/// and the bytes as they are, CR and LF. A short last line is not padded.
std::string LogDump(std::span<const unsigned char> bytes);

}  // namespace qel
