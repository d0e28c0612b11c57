#pragma once

#include <cstddef>
#include <span>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

// A GUID in registry form, for callers that write many into a buffer of their own.
namespace qel {

/// Characters of the registry form, braces included: {01234567-89AB-CDEF-0123-456789ABCDEF}.
inline constexpr std::size_t kGuidTextLength = 38;

/// Writes the registry form in upper-case hexadecimal, without a terminating zero.
QELLIB10_API void WriteGuid(const GUID& guid, std::span<char, kGuidTextLength> text) noexcept;

}  // namespace qel
