#pragma once

#include "qellib10/base/guid_text.h"

namespace qel {

/// Like WriteGuid, digit by digit, on any processor.
void WriteGuidPlain(const GUID& guid, std::span<char, kGuidTextLength> text) noexcept;

}  // namespace qel
