// Texts in an archive: the length in its shortest form, then the bytes.
#include <limits>
#include <string>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/text/code_page.h"

namespace {

// First value that a form of the length cannot express; it announces the next form.
constexpr BYTE kLongerThanByte = 0xFF;
constexpr WORD kLongerThanWord = 0xFFFF;
constexpr DWORD kLongerThanDword = 0xFFFFFFFF;
constexpr WORD kUtf16Marker = 0xFFFE;

constexpr ULONGLONG kLongestText = std::numeric_limits<int>::max();  // CString counts in int
constexpr std::size_t kPiece = 64 * 1024;

std::u16string Utf16FromBytes(std::string_view bytes) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        const auto low = static_cast<unsigned char>(bytes[2 * i]);
        const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
        units[i] = static_cast<char16_t>(low | high << 8);
    }
    return units;
}

}  // namespace

CArchive& CArchive::operator<<(const CString& text) {
    const std::string_view bytes = text.View();
    if (bytes.size() < kLongerThanByte) {
        *this << static_cast<BYTE>(bytes.size());
    } else if (bytes.size() < kUtf16Marker) {
        *this << kLongerThanByte << static_cast<WORD>(bytes.size());
    } else {
        *this << kLongerThanByte << kLongerThanWord << static_cast<DWORD>(bytes.size());
    }
    Write(bytes.data(), static_cast<UINT>(bytes.size()));
    return *this;
}

CArchive& CArchive::operator>>(CString& text) {
    bool isWide = false;
    const ULONGLONG length = ReadLength(isWide);
    if (length > std::numeric_limits<ULONGLONG>::max() / 2) Throw(CArchiveException::endOfFile);
    const std::string bytes = ReadBytes(isWide ? 2 * length : length);
    text = CString(isWide ? qel::FromUtf16(Utf16FromBytes(bytes)) : bytes);
    return *this;
}

ULONGLONG CArchive::ReadLength(bool& isWide) {
    if (const BYTE length = Get<BYTE>(); length < kLongerThanByte) return length;
    const WORD length = Get<WORD>();
    if (length == kUtf16Marker) {
        if (isWide) Throw(CArchiveException::genericException);
        isWide = true;
        return ReadLength(isWide);
    }
    if (length < kLongerThanWord) return length;
    if (const DWORD longer = Get<DWORD>(); longer < kLongerThanDword) return longer;
    return Get<ULONGLONG>();
}

std::string CArchive::ReadBytes(ULONGLONG count) {
    RequireLeft(count);
    if (count > kLongestText) Throw(CArchiveException::genericException);
    std::string bytes;
    // In pieces: if the file's length is unknown, memory grows only with the bytes that arrive.
    while (bytes.size() < count) {
        const std::size_t have = bytes.size();
        const auto piece = std::min<std::size_t>(kPiece, count - have);
        bytes.resize(have + piece);
        ReadAll(bytes.data() + have, static_cast<UINT>(piece));
    }
    return bytes;
}
