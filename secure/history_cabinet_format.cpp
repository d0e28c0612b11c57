#include "qellib10/secure/history_cabinet_format.h"

#include <algorithm>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"

#include "qellib10/base/guid_bytes.h"

namespace qel {
namespace {

using Magic = std::array<char, 4>;

constexpr std::size_t kLatestOffsetAt = 4, kVersionCountAt = 8, kGuidAt = 12, kHeaderSumAt = 28, kHeaderCrcAt = 32;
constexpr std::size_t kVersionAt = 4, kDataSizeAt = 8, kDataSumAt = 12, kDataCrcAt = 16;

void PutMagic(std::span<std::byte> bytes, const Magic& magic) {
    std::ranges::copy(std::as_bytes(std::span(magic)), bytes.begin());
}

Magic MagicOf(std::span<const std::byte> bytes) {
    Magic magic;
    std::ranges::copy(bytes.first(magic.size()), std::as_writable_bytes(std::span(magic)).begin());
    return magic;
}

void RequireMagic(std::span<const std::byte> bytes, const Magic& magic) {
    if (MagicOf(bytes) != magic) throw DataError("not the header of a cabinet or version");
}

CheckSums CheckSumsOfHeader(std::span<const std::byte> bytes) {
    CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), kCheckedHeaderSize});
    return sums;
}

}  // namespace

std::array<std::byte, kCabinetHeaderSize> Pack(const CabinetHeader& header) {
    std::array<std::byte, kCabinetHeaderSize> bytes;
    PutMagic(bytes, header.magic);
    PutNumber(bytes, kLatestOffsetAt, header.latestOffset);
    PutNumber(bytes, kVersionCountAt, header.versionCount);
    PutGuid(bytes, kGuidAt, header.guid);
    PutNumber(bytes, kHeaderSumAt, header.sum);
    PutNumber(bytes, kHeaderCrcAt, header.crc);
    return bytes;
}

std::array<std::byte, kVersionHeaderSize> Pack(const _CAB_VERSIONHEADER& header) {
    std::array<std::byte, kVersionHeaderSize> bytes;
    PutMagic(bytes, header.magic);
    PutNumber(bytes, kVersionAt, header.version);
    PutNumber(bytes, kDataSizeAt, header.dataSize);
    PutNumber(bytes, kDataSumAt, header.dataSum);
    PutNumber(bytes, kDataCrcAt, header.dataCRC);
    return bytes;
}

CabinetHeader UnpackCabinetHeader(std::span<const std::byte, kCabinetHeaderSize> bytes) {
    RequireMagic(bytes, kCabinetMagic);
    const CabinetHeader header = UnpackDamagedHeader(bytes);
    const CheckSums sums = CheckSumsOfHeader(bytes);
    if (sums.Sum() != header.sum || sums.Crc() != header.crc) throw DataError("a damaged cabinet header");
    return header;
}

CabinetHeader UnpackDamagedHeader(std::span<const std::byte, kCabinetHeaderSize> bytes) {
    return {.magic = MagicOf(bytes),
            .latestOffset = GetNumber<DWORD>(bytes, kLatestOffsetAt),
            .versionCount = GetNumber<DWORD>(bytes, kVersionCountAt),
            .guid = GetGuid(bytes, kGuidAt),
            .sum = GetNumber<DWORD>(bytes, kHeaderSumAt),
            .crc = GetNumber<DWORD>(bytes, kHeaderCrcAt)};
}

_CAB_VERSIONHEADER UnpackVersionHeader(std::span<const std::byte, kVersionHeaderSize> bytes) {
    RequireMagic(bytes, kVersionMagic);
    return UnpackDamagedVersion(bytes);
}

_CAB_VERSIONHEADER UnpackDamagedVersion(std::span<const std::byte, kVersionHeaderSize> bytes) {
    return {.magic = MagicOf(bytes),
            .version = GetNumber<DWORD>(bytes, kVersionAt),
            .dataSize = GetNumber<DWORD>(bytes, kDataSizeAt),
            .dataSum = GetNumber<DWORD>(bytes, kDataSumAt),
            .dataCRC = GetNumber<DWORD>(bytes, kDataCrcAt)};
}

CheckSums CheckSumsOf(const CabinetHeader& header) { return CheckSumsOfHeader(Pack(header)); }

}  // namespace qel
