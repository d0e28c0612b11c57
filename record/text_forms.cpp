#include "qellib10/record/text_forms.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "qellib10/base/read_number.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/random.h"
#include "qellib10/platform/text/printable_text.h"

namespace qel {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> Values() {
    std::array<std::int8_t, 256> values = {};
    values.fill(-1);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i)
        values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
    return values;
}

}  // namespace

std::string Hex(std::span<const std::byte> bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::byte byte : bytes) {
        text += kDigits[std::to_integer<unsigned>(byte) >> 4];
        text += kDigits[std::to_integer<unsigned>(byte) & 15];
    }
    return text;
}

bool IsHex(std::string_view text, std::size_t digits) {
    return text.size() == digits && text.find_first_not_of(kDigits) == std::string_view::npos;
}

void Unhex(std::string_view text, std::span<std::byte> bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::byte>(kDigits.find(text[2 * i]) << 4 | kDigits.find(text[2 * i + 1]));
}

bool HasFormOfGuid(std::string_view text) {
    if (text.size() != 36) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
        const char c = text[i];
        const bool isDigit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
        if (isDash ? c != '-' : !isDigit) return false;
    }
    return true;
}

bool IsCabinet(std::string_view text) {
    return text.size() == 38 && text.front() == '{' && text.back() == '}' && HasFormOfGuid(text.substr(1, 36)) &&
           std::ranges::none_of(text, [](char c) { return c >= 'a' && c <= 'f'; });
}

bool IsShown(std::string_view text, std::size_t longest) {
    return !text.empty() && text.size() <= longest && text.front() != ' ' && text.back() != ' ' &&
           PrintableText(text) == text;
}

std::optional<std::uint64_t> ReadEntryNumber(std::string_view text) {
    const std::optional<std::uint64_t> number = ReadWholeNumber<std::uint64_t>(text);
    return number && *number > 0 && std::to_string(*number) == text ? number : std::nullopt;
}

std::string RandomId() {
    std::array<std::byte, 16> id;
    if (!FillRandom(id)) throw DataError("the system has no random numbers");
    return Hex(id);
}

void EncodeBase64(std::string_view bytes, std::span<std::byte> to) {
    std::size_t done = 0;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            to[done++] = static_cast<std::byte>(i <= count ? kAlphabet[group >> (18 - 6 * i) & 63] : '=');
    }
}

std::string EncodeBase64(std::string_view bytes) {
    std::string text(EncodedSize(bytes.size()), '\0');
    EncodeBase64(bytes, std::as_writable_bytes(std::span(text)));
    return text;
}

std::size_t DecodeBase64(std::string_view text, std::span<std::byte> to) {
    static constexpr std::array<std::int8_t, 256> kValues = Values();
    const auto refuse = [] { throw DataError("a text is not Base64, or not in its only form"); };
    if (text.size() % 4 != 0) refuse();
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    std::size_t done = 0;
    for (std::size_t at = 0; at < text.size(); at += 4) {
        const std::size_t missing = at + 4 == text.size() ? padding : 0;
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            const int value = i < 4 - missing ? kValues[static_cast<unsigned char>(text[at + i])] : 0;
            if (value < 0) refuse();
            group = group << 6 | static_cast<std::uint32_t>(value);
        }
        if ((group & ((1U << 8 * missing) - 1)) != 0) refuse();
        for (std::size_t i = 0; i < 3 - missing; ++i) to[done++] = static_cast<std::byte>(group >> (16 - 8 * i) & 0xFF);
    }
    return done;
}

std::string DecodeBase64(std::string_view text) {
    std::string bytes(DecodedSize(text.size()), '\0');
    bytes.resize(DecodeBase64(text, std::as_writable_bytes(std::span(bytes))));
    return bytes;
}

}  // namespace qel
