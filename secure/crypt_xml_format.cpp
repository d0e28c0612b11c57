#include "qellib10/secure/crypt_xml_format.h"

#include <algorithm>
#include <vector>

#include "qellib10/platform/text/unicode.h"
#include "qellib10/secure/crypt_brow_fish.h"

namespace qel {
namespace {

constexpr std::size_t kBlock = 8;

const unsigned char* Bytes(const char* text) { return reinterpret_cast<const unsigned char*>(text); }
unsigned char* Bytes(char* text) { return reinterpret_cast<unsigned char*>(text); }

CCryptBrowFish CipherOf(const CString& key) {
    CCryptBrowFish cipher;
    cipher.Initialize(Bytes(key), key.GetLength());
    return cipher;
}

}  // namespace

std::string EncipheredXml(std::string text, const CString& key) {
    CCryptBrowFish cipher = CipherOf(key);
    const auto length = static_cast<DWORD>(text.size());
    text.resize(std::max(text.size(), kBlock));  // a shorter text is read as a whole block
    std::string file(1 + cipher.GetOutputLength(length), kEncipheredMark);
    cipher.Encode(Bytes(text.data()), Bytes(file.data()) + 1, length);
    return file;
}

std::string DecipheredXml(std::string file, const CString& key) {
    CCryptBrowFish cipher = CipherOf(key);
    const auto length = cipher.GetOutputLength(static_cast<DWORD>(file.size() - 1));
    file.resize(1 + std::size_t{length});
    cipher.Decode(Bytes(file.data()) + 1, Bytes(file.data()) + 1, length);
    file.erase(0, 1);
    file.resize(std::min(file.find('\0'), file.size()));
    return file;
}

std::string EncodedUnits(std::u16string_view units) {
    std::string bytes;
    bytes.reserve(3 * units.size());
    const auto put = [&](unsigned byte) { bytes += static_cast<char>(byte); };
    for (const unsigned unit : units) {
        if (unit < 0x80) {
            put(unit);
        } else if (unit < 0x800) {
            put(0xC0 | unit >> 6);
            put(0x80 | (unit & 0x3F));
        } else {
            put(0xE0 | unit >> 12);
            put(0x80 | (unit >> 6 & 0x3F));
            put(0x80 | (unit & 0x3F));
        }
    }
    return bytes;
}

std::u16string DecodedUnits(std::string_view bytes) {
    std::u16string units;
    units.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const auto byteAt = [&](std::size_t offset) { return static_cast<unsigned char>(bytes[at + offset]); };
        const std::size_t left = bytes.size() - at;
        const unsigned first = byteAt(0);
        if (first < 0x80) {
            units += static_cast<char16_t>(first);
            at += 1;
        } else if (first >= 0xC0 && first < 0xE0 && left > 1) {
            units += static_cast<char16_t>((first & 0x1F) << 6 | (byteAt(1) & 0x3F));
            at += 2;
        } else if (first >= 0xE0 && first < 0xF0 && left > 2) {
            units += static_cast<char16_t>((first & 0x0F) << 12 | (byteAt(1) & 0x3F) << 6 | (byteAt(2) & 0x3F));
            at += 3;
        } else {
            char16_t pair[kMaxUnits];
            units.append(pair, WriteCharacter(pair, NextCharacter(bytes, at)));
        }
    }
    return units;
}

std::string Utf8OfUnits(std::u16string_view units) {
    std::string utf8;
    utf8.reserve(3 * units.size());
    for (std::size_t at = 0; at < units.size();) {
        char character[kMaxUnits];
        utf8.append(character, WriteCharacter(character, NextCharacter(units, at)));
    }
    return utf8;
}

}  // namespace qel
