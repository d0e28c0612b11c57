#include "qellib10/base/guid.h"

#include <array>
#include <cstring>
#include <span>
#include <string_view>

#include "qellib10/platform/operation.h"
#include "qellib10/platform/random.h"

#include "qellib10/base/guid_text_inline.h"

CGuid::~CGuid() = default;

CGuid& CGuid::operator=(const GUID& guid) noexcept {
    m_guid = guid;
    return *this;
}

bool CGuid::operator==(const GUID& other) const noexcept { return std::memcmp(&m_guid, &other, sizeof other) == 0; }

BOOL CGuid::IsNull() const noexcept { return *this == GUID{} ? 1 : 0; }

CGuid CGuid::CreateNewGuid() {
    GUID guid = {};
    qel::Operation running("CGuid::CreateNewGuid");
    const bool isFilled = qel::FillRandom(std::as_writable_bytes(std::span(&guid, 1)));
    if (!running.Ended(isFilled, qel::FailureKind::kRefused, "the system gives no random bytes")) return {};
    guid.Data3 = static_cast<std::uint16_t>((guid.Data3 & 0x0FFF) | 0x4000);   // version 4: random
    guid.Data4[0] = static_cast<std::uint8_t>((guid.Data4[0] & 0x3F) | 0x80);  // the variant of RFC 4122
    return guid;
}

CString CGuid::GetString() const {
    std::array<char, qel::kGuidTextLength> text;
    qel::WriteGuidInline(m_guid, text);
    return CString(std::string_view(text.data(), text.size()));  // of a length known to the compiler
}
