#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "qellib10/file/check_sums.h"
#include "qellib10/secure/history_cabinet_file.h"

// The bytes of a cabinet's headers. Integers are little-endian.
//
//     0     4    "HCF1"                              0     4    "CVH1"
//     4     4    offset of the latest version        4     4    version number
//     8     4    number of versions                  8     4    size of the data, which follow
//     12    16   GUID                                12    4    sum of the data
//     28    4    sum of bytes 0-27                   16    4    CRC of the data
//     32    4    CRC of bytes 0-27
//
// Offsets, counts and sizes come from a file: check before use.
namespace qel {

inline constexpr std::size_t kCabinetHeaderSize = 36;
inline constexpr std::size_t kCheckedHeaderSize = 28;  // the bytes covered by the header's sum and CRC
inline constexpr std::size_t kVersionHeaderSize = 20;

inline constexpr std::array<char, 4> kCabinetMagic = {'H', 'C', 'F', '1'};
inline constexpr std::array<char, 4> kVersionMagic = {'C', 'V', 'H', '1'};

std::array<std::byte, kCabinetHeaderSize> Pack(const CabinetHeader& header);
std::array<std::byte, kVersionHeaderSize> Pack(const _CAB_VERSIONHEADER& header);

/// @throws DataError unless magic, sum and CRC are correct
CabinetHeader UnpackCabinetHeader(std::span<const std::byte, kCabinetHeaderSize> bytes);
/// The same of a damaged file, as it is there.
CabinetHeader UnpackDamagedHeader(std::span<const std::byte, kCabinetHeaderSize> bytes);
/// @throws DataError unless the magic is correct
_CAB_VERSIONHEADER UnpackVersionHeader(std::span<const std::byte, kVersionHeaderSize> bytes);
/// The same of a damaged file, as it is there.
_CAB_VERSIONHEADER UnpackDamagedVersion(std::span<const std::byte, kVersionHeaderSize> bytes);

/// The checksums for this header.
CheckSums CheckSumsOf(const CabinetHeader& header);

}  // namespace qel
