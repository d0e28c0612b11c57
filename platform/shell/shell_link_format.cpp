#include "qellib10/platform/shell/shell_link_format.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr std::uint32_t kHeaderSize = 76;
constexpr std::array<std::uint8_t, 16> kClass = {0x01, 0x14, 0x02, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
constexpr std::uint32_t kHasLinkInfo = 0x02, kHasDescription = 0x04, kUnicodeTexts = 0x80;
constexpr std::uint32_t kFolderAttribute = 0x10, kFileAttribute = 0x20;
constexpr std::uint32_t kShowNormal = 1;
constexpr std::uint32_t kInfoHeaderSize = 0x1C, kInfoHeaderSizeUnicode = 0x24;
constexpr std::uint32_t kVolumeSize = 17;
constexpr std::uint32_t kVolumeAndLocalPath = 1;
constexpr std::uint32_t kFixedDrive = 3;
constexpr std::size_t kLongestDescription = 259;

class ByteSink {
public:
    template <PackableNumber... Numbers> void Put(Numbers... numbers) { (PutOne(numbers), ...); }
    void Put(std::string_view text) {
        for (const char c : text) PutOne(static_cast<std::uint8_t>(c));
    }
    void Put(std::u16string_view text) {
        for (const char16_t unit : text) PutOne(static_cast<std::uint16_t>(unit));
    }
    std::vector<std::byte> Take() { return std::move(m_bytes); }

private:
    template <PackableNumber T> void PutOne(T number) {
        const auto bytes = ToLittleEndian(number);
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }

    std::vector<std::byte> m_bytes;
};

// Units of 100 ns since 1601; 0: unknown.
std::uint64_t FileTime(const std::optional<CTime>& time) {
    constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
    constexpr std::int64_t kLatest = 253'402'300'799;  // the end of the year 9999
    if (!time) return 0;
    return static_cast<std::uint64_t>(std::clamp(time->GetTime(), -kSecondsTo1970, kLatest) + kSecondsTo1970) *
           10'000'000;
}

void PutHeader(ByteSink& sink, const ShellLink& link) {
    sink.Put(kHeaderSize);
    for (const std::uint8_t byte : kClass) sink.Put(byte);
    sink.Put(kHasLinkInfo | kUnicodeTexts | (link.description ? kHasDescription : 0));
    sink.Put(link.isFolder ? kFolderAttribute : kFileAttribute);
    sink.Put(FileTime(link.created), FileTime(link.accessed), FileTime(link.written));
    sink.Put(static_cast<std::uint32_t>(link.size));
    sink.Put(std::uint32_t{0} /* icon */, kShowNormal, std::uint32_t{0} /* hot key */, std::uint64_t{0});
}

void PutLinkInfo(ByteSink& sink, std::string_view target) {
    const bool unicode = std::ranges::any_of(target, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    const std::u16string wide = unicode ? ToUtf16(target) : std::u16string();
    const std::uint32_t volumeAt = unicode ? kInfoHeaderSizeUnicode : kInfoHeaderSize;
    const std::uint32_t pathAt = volumeAt + kVolumeSize;
    const std::uint32_t suffixAt = pathAt + static_cast<std::uint32_t>(target.size()) + 1;
    const std::uint32_t widePathAt = suffixAt + 1;
    const std::uint32_t wideSuffixAt = widePathAt + 2 * (static_cast<std::uint32_t>(wide.size()) + 1);

    sink.Put(unicode ? wideSuffixAt + 2 : suffixAt + 1, volumeAt, kVolumeAndLocalPath, volumeAt, pathAt);
    sink.Put(std::uint32_t{0} /* no network name */, suffixAt);
    if (unicode) sink.Put(widePathAt, wideSuffixAt);
    sink.Put(kVolumeSize, kFixedDrive, std::uint32_t{0} /* serial number */, kVolumeSize - 1, std::uint8_t{0});
    sink.Put(target);
    sink.Put(std::uint8_t{0}, std::uint8_t{0});
    if (!unicode) return;
    sink.Put(wide);
    sink.Put(std::uint16_t{0}, std::uint16_t{0});
}

void PutDescription(ByteSink& sink, std::string_view description) {
    std::u16string wide = ToUtf16(description);
    if (wide.size() > kLongestDescription) {
        const char16_t last = wide[kLongestDescription - 1];
        const bool halfCharacter = last >= 0xD800 && last <= 0xDBFF;
        wide.resize(kLongestDescription - (halfCharacter ? 1 : 0));
    }
    sink.Put(static_cast<std::uint16_t>(wide.size()));
    sink.Put(wide);
}

}  // namespace

std::vector<std::byte> ShellLink::Pack() const {
    ByteSink sink;
    PutHeader(sink, *this);
    PutLinkInfo(sink, target.View());
    if (description) PutDescription(sink, description->View());
    sink.Put(std::uint32_t{0});
    return sink.Take();
}

}  // namespace qel
