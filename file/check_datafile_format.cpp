#include "qellib10/file/check_datafile_format.h"

#include <algorithm>
#include <iterator>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"

#include "qellib10/base/guid_bytes.h"

namespace qel {
namespace {

// The fields after the name; offsets from its end.
constexpr std::size_t kVersionAt = 0, kGuidAt = 4, kAfterNameSize = SealInfo::kNameless - 1;

}  // namespace

std::vector<std::byte> SealInfo::Pack() const {
    const auto text = std::as_bytes(std::span(name.View()));
    const std::size_t length = text.size() + kNameless;
    std::vector<std::byte> bytes(kLengthSize + length);
    const std::span all(bytes);
    PutNumber(all, 0, static_cast<std::uint32_t>(length));
    std::ranges::copy(text, all.subspan(kLengthSize).begin());
    const auto rest = all.last(kAfterNameSize);
    PutNumber(rest, kVersionAt, version);
    PutGuid(rest, kGuidAt, guid);
    return bytes;
}

SealInfo SealInfo::Unpack(std::span<const std::byte> record) {
    const auto zero = std::ranges::find(record, std::byte{0});
    const auto nameSize = static_cast<std::size_t>(zero - record.begin());
    if (record.size() < nameSize + 1 + kAfterNameSize) throw DataError("not a record of a sealed file");
    const auto rest = record.subspan(nameSize + 1, kAfterNameSize);
    SealInfo info;
    info.name = CString(reinterpret_cast<const char*>(record.data()), static_cast<int>(nameSize));
    info.version = GetNumber<std::uint32_t>(rest, kVersionAt);
    info.guid = GetGuid(rest, kGuidAt);
    return info;
}

std::uint32_t SealInfo::UnpackLength(std::span<const std::byte, kLengthSize> bytes) {
    return GetNumber<std::uint32_t>(bytes, 0);
}

std::array<std::byte, CheckBlock::kSize> CheckBlock::Pack() const {
    std::array<std::byte, kSize> bytes;
    PutNumber(bytes, kCrcAt, crc);
    PutNumber(bytes, kSumAt, sum);
    PutNumber(bytes, kTrailerLengthAt, trailerLength);
    return bytes;
}

CheckBlock CheckBlock::Unpack(std::span<const std::byte, kSize> bytes) {
    return {.crc = GetNumber<std::uint32_t>(bytes, kCrcAt),
            .sum = GetNumber<std::uint32_t>(bytes, kSumAt),
            .trailerLength = GetNumber<std::uint32_t>(bytes, kTrailerLengthAt)};
}

}  // namespace qel
