#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "qellib10/platform/types.h"

namespace qel {

/// Both directions of a code page with single and double bytes. A character's code is its byte, or lead * 256 + trail;
/// 0 means "none", because only the zero byte itself has code 0.
struct PageTable {
    UINT page = 0;
    std::array<char16_t, 256> singles{};  // by byte; 0 for lead bytes
    std::vector<char16_t> pairs;          // by code; empty for a page without lead bytes
    std::vector<std::uint16_t> codes;     // by character
};

/// The table of @p page, 932 or 1252. It is read from the system's converter once, at the first use, and never changes
/// after that: conversions need neither a lock nor a converter that must be reset after bad input. A fork waits while
/// another thread is reading one.
/// @throws std::runtime_error when the system has no converter for the page
const PageTable& TableOfPage(UINT page);

}  // namespace qel
