#pragma once

#include <cstdint>

#include "qellib10/platform/types.h"

namespace qel {

/// The character that code page @p page (932 or 1252) uses for one that is missing there but similar: µ becomes the
/// Greek letter in 932, a full-width letter the plain one in 1252. The platform's choice, from its published tables.
/// @return a byte, or lead * 256 + trail; 0 when nothing is similar
std::uint16_t BestFit(char32_t character, UINT page);

}  // namespace qel
