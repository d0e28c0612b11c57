#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

// The Base64 alphabet of RFC 4648 and the conversion group by group, on any processor.
namespace qel {

inline constexpr char kBase64Padding = '=';
inline constexpr std::string_view kBase64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Character code to 6-bit value; 0 for everything outside the alphabet, the padding included.
inline constexpr auto kBase64Values = [] {
    std::array<unsigned char, 256> values = {};
    for (std::size_t value = 0; value < kBase64Alphabet.size(); ++value)
        values[static_cast<unsigned char>(kBase64Alphabet[value])] = static_cast<unsigned char>(value);
    return values;
}();

/// Encodes all of @p source with padding at the end; @p target needs four characters per group of three, including a
/// partial one.
void EncodeBase64Plain(std::span<const unsigned char> source, char* target);

/// Decodes the whole groups of four in @p source, three bytes each; @p target may be the start of @p source.
void DecodeBase64Plain(std::span<const char> source, unsigned char* target);

}  // namespace qel
