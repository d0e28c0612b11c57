#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// 256 random bits as 64 hexadecimal digits.
std::string NewToken();

/// What identifies a token without being one: its BLAKE2b hash. Tokens are random, so this one may be quick.
using TokenDigest = std::array<std::byte, 32>;
TokenDigest DigestOf(std::string_view token);

/// Compares in a time that does not depend on the bytes.
bool IsSame(const TokenDigest& a, const TokenDigest& b);

}  // namespace qel
