#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

// The bytes of a seal, for programs that look at seals which are damaged or cut. CCheckDatafile checks whether a seal
// is right. It is a trailer after the file's own data. Integers are little-endian.
//
//     0         4    info length: what follows up to the check block, name + 21 bytes
//     4         n    file name without folder, and a zero
//     4 + n     4    version: how often the file was sealed
//     8 + n     16   GUID
//     24 + n    12   check block
//
// Lengths come from a file: check before use.
namespace qel {

/// The identity of the file, and how often it was sealed: the trailer up to the check block.
struct QELLIB10_API SealInfo {
    static constexpr std::size_t kLengthSize = 4;  ///< of the info length, which is before the record
    static constexpr std::size_t kNameless = 21;   ///< bytes of a record besides those of the name
    /// Bytes of the longest record: a name is at most as long as a path.
    static constexpr std::size_t kLongest = MAX_PATH - 1 + kNameless;

    CString name;
    std::uint32_t version = 0;
    GUID guid = {};

    /// The record, with the info length before it.
    std::vector<std::byte> Pack() const;
    /// @param record the bytes after the info length, or the first kLongest of them; bytes after the record are ignored
    /// @throws DataError if they are not a record
    static SealInfo Unpack(std::span<const std::byte> record);
    /// The info length before a record.
    static std::uint32_t UnpackLength(std::span<const std::byte, kLengthSize> bytes);
};

/// The last 12 bytes of a sealed file.
struct QELLIB10_API CheckBlock {
    static constexpr std::size_t kCrcAt = 0, kSumAt = 4, kTrailerLengthAt = 8, kSize = 12;

    std::uint32_t crc = 0;            ///< CRC-32/BZIP2 of everything before this block
    std::uint32_t sum = 0;            ///< byte sum of the same bytes, never 0
    std::uint32_t trailerLength = 0;  ///< bytes from the info length to this field

    /// Bytes of the whole trailer, as this block says.
    constexpr std::uint64_t TrailerSize() const { return std::uint64_t{trailerLength} + sizeof trailerLength; }
    /// Whether this block belongs to a record of that length.
    constexpr bool Fits(std::uint32_t infoLength) const { return std::uint64_t{infoLength} + kSize == trailerLength; }

    std::array<std::byte, kSize> Pack() const;
    static CheckBlock Unpack(std::span<const std::byte, kSize> bytes);
};

}  // namespace qel
