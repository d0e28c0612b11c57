#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Bytes as text in the forms that a trail and SSH's files have. Every text has one form only: what would decode to the
// same bytes but is written in another way is refused, or an entry could be changed without its signature noticing.
namespace qel {

/// Lower-case hexadecimal digits.
std::string Hex(std::span<const std::byte> bytes);
bool IsHex(std::string_view text, std::size_t digits);
/// @param text for which IsHex holds, with two digits for each of @p bytes
void Unhex(std::string_view text, std::span<std::byte> bytes);

/// 8-4-4-4-12 hexadecimal digits, as a GUID and a boot's ID have them.
bool HasFormOfGuid(std::string_view text);
/// The GUID of a cabinet as CGuid::GetString writes it: braces and capitals.
bool IsCabinet(std::string_view text);

/// Whether a text looks like what it is: UTF-8 without control characters, 1 to @p longest bytes, and no blank at its
/// start or end, with which it would look like another one.
bool IsShown(std::string_view text, std::size_t longest);

/// The number of an entry: decimal digits, from 1, without a leading zero.
std::optional<std::uint64_t> ReadEntryNumber(std::string_view text);

/// 128 random bits as 32 such digits: a trail's ID, or a number that is used once. @throws DataError
std::string RandomId();

/// The standard alphabet of RFC 4648 with padding.
std::string EncodeBase64(std::string_view bytes);
constexpr std::size_t EncodedSize(std::size_t bytes) { return (bytes + 2) / 3 * 4; }
/// @param to has EncodedSize(bytes.size()) bytes
void EncodeBase64(std::string_view bytes, std::span<std::byte> to);
/// An upper limit of the bytes that so many characters encode.
constexpr std::size_t DecodedSize(std::size_t characters) { return characters / 4 * 3; }
/// @param to has DecodedSize(text.size()) bytes
/// @return how many were written
/// @throws DataError for other characters, blanks, missing padding, and bits set where there is no data
std::size_t DecodeBase64(std::string_view text, std::span<std::byte> to);
std::string DecodeBase64(std::string_view text);

}  // namespace qel
