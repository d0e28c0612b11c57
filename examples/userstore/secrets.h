#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What the store keeps in place of secrets, by libsodium.
namespace userstore {

/// What checking one password costs, and so each guess: passes over so many bytes. Between 8 KiB and 1 GiB, 1 to 16
/// passes; the default takes about a tenth of a second.
struct HashCost {
    std::uint64_t passes = 2;
    std::uint64_t memory = 64 << 20;

    bool operator==(const HashCost&) const = default;
};

/// A password's argon2id hash with what it was made of.
struct PasswordHash {
    std::array<unsigned char, 16> salt = {};
    std::array<unsigned char, 32> hash = {};
    HashCost cost;
};

/// @throws StoreError when the cost is out of range or the memory is not there
PasswordHash HashPassword(std::string_view password, const HashCost& cost);

/// Whether @p password is the hashed one, at its hash's cost. Throws as above.
bool IsPassword(std::string_view password, const PasswordHash& hash);

/// 256 random bits as hexadecimal text.
std::string NewToken();

/// What tells a token without being one: its BLAKE2b hash. Tokens are random, so this one may be quick.
using TokenDigest = std::array<unsigned char, 32>;
TokenDigest DigestOf(std::string_view token);

/// Compares in a time that does not depend on the bytes.
bool IsSame(const TokenDigest& a, const TokenDigest& b);

}  // namespace userstore
