#include "qellib10/file/check_datafile_format.h"

#include <algorithm>
#include <iterator>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"

namespace qel {
namespace {

// What stands behind the name, from there.
constexpr std::size_t kVersionAt = 0, kData1At = 4, kData2At = 8, kData3At = 10, kData4At = 12, kBehindName = 20;

template <PackableNumber T> void Put(std::span<std::byte> bytes, std::size_t offset, T value) {
    std::ranges::copy(ToLittleEndian(value), bytes.subspan(offset, sizeof(T)).begin());
}

template <PackableNumber T> T At(std::span<const std::byte> bytes, std::size_t offset) {
    return FromLittleEndian<T>(std::span<const std::byte, sizeof(T)>(bytes.subspan(offset, sizeof(T))));
}

}  // namespace

std::vector<std::byte> SealInfo::Pack() const {
    const auto text = std::as_bytes(std::span(name.View()));
    const std::size_t length = text.size() + 1 + kBehindName;
    std::vector<std::byte> bytes(kLengthSize + length);
    const std::span all(bytes);
    Put(all, 0, static_cast<std::uint32_t>(length));
    std::ranges::copy(text, all.subspan(kLengthSize).begin());
    const auto rest = all.last(kBehindName);
    Put(rest, kVersionAt, version);
    Put(rest, kData1At, guid.Data1);
    Put(rest, kData2At, guid.Data2);
    Put(rest, kData3At, guid.Data3);
    std::ranges::copy(std::as_bytes(std::span(guid.Data4)), rest.subspan(kData4At).begin());
    return bytes;
}

SealInfo SealInfo::Unpack(std::span<const std::byte> record) {
    const auto zero = std::ranges::find(record, std::byte{0});
    const auto nameSize = static_cast<std::size_t>(zero - record.begin());
    if (record.size() < nameSize + 1 + kBehindName) throw DataError("no record of a sealed file");
    const auto rest = record.subspan(nameSize + 1, kBehindName);
    SealInfo info;
    info.name = CString(reinterpret_cast<const char*>(record.data()), static_cast<int>(nameSize));
    info.version = At<std::uint32_t>(rest, kVersionAt);
    info.guid.Data1 = At<std::uint32_t>(rest, kData1At);
    info.guid.Data2 = At<std::uint16_t>(rest, kData2At);
    info.guid.Data3 = At<std::uint16_t>(rest, kData3At);
    std::ranges::copy(rest.subspan(kData4At), std::as_writable_bytes(std::span(info.guid.Data4)).begin());
    return info;
}

std::array<std::byte, CheckBlock::kSize> CheckBlock::Pack() const {
    std::array<std::byte, kSize> bytes;
    Put(bytes, kCrcAt, crc);
    Put(bytes, kSumAt, sum);
    Put(bytes, kTrailerLengthAt, trailerLength);
    return bytes;
}

CheckBlock CheckBlock::Unpack(std::span<const std::byte, kSize> bytes) {
    return {.crc = At<std::uint32_t>(bytes, kCrcAt),
            .sum = At<std::uint32_t>(bytes, kSumAt),
            .trailerLength = At<std::uint32_t>(bytes, kTrailerLengthAt)};
}

}  // namespace qel
