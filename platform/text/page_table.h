#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "qellib10/platform/types.h"

namespace qel {

/// What a code page with single and double bytes maps, both ways. A character's code is its byte, or
/// lead * 256 + trail; 0 stands for "none", since only the zero byte itself has code 0.
struct PageTable {
    UINT page = 0;
    std::array<char16_t, 256> singles{};  // by byte; 0 for lead bytes
    std::vector<char16_t> pairs;          // by code; empty for a page without lead bytes
    std::vector<std::uint16_t> codes;     // by character
};

/// The table of @p page, 932 or 1252. It is read out of the system's converter once, at the first use, and never
/// changes after that: conversions need neither a lock nor a converter that has to be reset after bad input. A thread
/// that forks waits until no other is reading one.
/// @throws std::runtime_error when the system has no converter for the page
const PageTable& TableOfPage(UINT page);

}  // namespace qel
