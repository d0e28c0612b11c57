#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The Blowfish block cipher (B. Schneier, 1994): 16 Feistel rounds over blocks of 64 bits. The halves of a block are
// stored lowest byte first, unlike in the published vectors; files in the field are enciphered in this way.
namespace qel {

/// The round keys and the S-boxes in one array; entry i of box k is at 256 * k + i.
struct BlowfishTables {
    std::array<std::uint32_t, 18> p;
    std::array<std::uint32_t, 1024> s;
};

/// The start values of every key: the hexadecimal digits of pi after the point.
extern const BlowfishTables kBlowfishStart;

inline constexpr std::size_t kBlowfishBlock = 8;  // bytes

/// The tables of a key, which is repeated to fill the 72 bytes of the round keys; an empty key changes nothing.
void MakeBlowfishTables(BlowfishTables& tables, std::span<const unsigned char> key);

/// One block in place, by its halves.
void EncipherBlowfish(const BlowfishTables& tables, std::uint32_t& left, std::uint32_t& right);
void DecipherBlowfish(const BlowfishTables& tables, std::uint32_t& left, std::uint32_t& right);

/// Whole blocks, each by itself. @p in and @p out are the same, or do not overlap.
void EncipherBlowfish(const BlowfishTables& tables, const unsigned char* in, unsigned char* out, std::size_t blocks);
void DecipherBlowfish(const BlowfishTables& tables, const unsigned char* in, unsigned char* out, std::size_t blocks);

}  // namespace qel
