#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/platform/text/string.h"
#include "qellib10/platform/time/time.h"

namespace qel {

/// What a shell link says about its target.
struct ShellLink {
    CString target;  // absolute, with backslashes
    std::optional<CString> description;
    bool isFolder = false;
    std::uint64_t size = 0;
    std::optional<CTime> created, accessed, written;

    /// The bytes of a link file (.lnk). Integers little-endian:
    ///
    ///     0   header, 76 bytes: its size, class, flags, the target's attributes, times and size
    ///     76  link info: offsets (from 76), volume, path in the code page and, where that is not ASCII, in UTF-16
    ///     ..  description, where there is one: count of UTF-16 units (at most 259), units
    ///     ..  four zero bytes
    std::vector<std::byte> Pack() const;
};

}  // namespace qel
