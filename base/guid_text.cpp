#include "qellib10/base/guid_text.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "qellib10/base/guid_text_inline.h"
#include "qellib10/base/guid_text_plain.h"

namespace qel {
namespace {

std::array<std::uint8_t, 16> InReadingOrder(const GUID& guid) {
    std::array<std::uint8_t, 16> bytes = {};
    for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(guid.Data1 >> (24 - 8 * i));
    for (std::size_t i = 0; i < 2; ++i) {
        bytes[4 + i] = static_cast<std::uint8_t>(guid.Data2 >> (8 - 8 * i));
        bytes[6 + i] = static_cast<std::uint8_t>(guid.Data3 >> (8 - 8 * i));
    }
    std::ranges::copy(guid.Data4, bytes.begin() + 8);
    return bytes;
}

}  // namespace

void WriteGuidPlain(const GUID& guid, std::span<char, kGuidTextLength> text) noexcept {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const std::array bytes = InReadingOrder(guid);
    auto at = text.begin();
    *at++ = '{';
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) *at++ = '-';
        *at++ = kDigits[bytes[i] >> 4];
        *at++ = kDigits[bytes[i] & 15];
    }
    *at = '}';
}

void WriteGuid(const GUID& guid, std::span<char, kGuidTextLength> text) noexcept { WriteGuidInline(guid, text); }

}  // namespace qel
