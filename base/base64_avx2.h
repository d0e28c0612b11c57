#pragma once

#include <cstddef>
#include <span>

// Base64 by 32 characters a step on processors with AVX2, with the results of the plain form to the bit, characters
// outside the alphabet included. Nothing outside the spans and what they convert to is read or written.
namespace qel {

/// Whether this processor and system run AVX2; the other functions need it.
bool HasAvx2() noexcept;

/// Encodes whole groups of three from the front of @p source to @p target.
/// @return bytes taken: all whole groups, or 0 when there are fewer than 24 bytes
std::size_t EncodeBase64Avx2(std::span<const unsigned char> source, char* target);

/// Decodes whole groups of four from the front of @p source to @p target, which may be where @p source begins.
/// @return characters taken: all whole groups, or 0 when there are fewer than 32 characters
std::size_t DecodeBase64Avx2(std::span<const char> source, unsigned char* target);

}  // namespace qel
