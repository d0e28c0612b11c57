#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// What entries of a trail say about a file: TrailRecord::size and TrailRecord::sha256.
struct QELLIB10_API FileHash {
    std::uint64_t size = 0;   ///< bytes
    std::string sha256 = {};  ///< 64 lower-case hexadecimal digits

    bool operator==(const FileHash&) const = default;
};

/// Reads a file once, also while others write to it.
/// @param path in the library's form
/// @return nothing when it cannot be read; qel::LastFailure has the reason
QELLIB10_API std::optional<FileHash> HashFile(std::string_view path);

/// SHA-256 of a text, 64 lower-case hexadecimal digits.
QELLIB10_API std::string HashText(std::string_view bytes);

}  // namespace qel
