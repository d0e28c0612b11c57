#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/types.h"

// A GUID in the form of our files: 32, 16 and 16 bits, lowest byte first, and 8 bytes. It must fit in the bytes.
namespace qel {

inline constexpr std::size_t kGuidSize = 16;
inline constexpr std::size_t kGuidData2At = 4, kGuidData3At = 6, kGuidData4At = 8;

inline void PutGuid(std::span<std::byte> bytes, std::size_t offset, const GUID& guid) {
    const auto room = bytes.subspan(offset, kGuidSize);
    PutNumber(room, 0, guid.Data1);
    PutNumber(room, kGuidData2At, guid.Data2);
    PutNumber(room, kGuidData3At, guid.Data3);
    std::ranges::copy(std::as_bytes(std::span(guid.Data4)), room.subspan(kGuidData4At).begin());
}

inline GUID GetGuid(std::span<const std::byte> bytes, std::size_t offset) {
    const auto room = bytes.subspan(offset, kGuidSize);
    GUID guid = {};
    guid.Data1 = GetNumber<decltype(guid.Data1)>(room, 0);
    guid.Data2 = GetNumber<decltype(guid.Data2)>(room, kGuidData2At);
    guid.Data3 = GetNumber<decltype(guid.Data3)>(room, kGuidData3At);
    std::ranges::copy(room.subspan(kGuidData4At), std::as_writable_bytes(std::span(guid.Data4)).begin());
    return guid;
}

}  // namespace qel
