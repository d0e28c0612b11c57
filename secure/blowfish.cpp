#include "qellib10/secure/blowfish.h"

#include <cstring>
#include <utility>

#include "qellib10/platform/endian.h"

namespace qel {
namespace {

enum class Direction { encipher, decipher };

// Blocks that are processed together. A round of one block waits for its four look-ups; the other blocks fill this
// time. More than four would not fit in the registers.
constexpr std::size_t kLanes = 4;

template <std::size_t lanes> struct Halves { std::array<std::uint32_t, lanes> left, right; };

inline std::uint32_t F(const std::uint32_t* s, std::uint32_t x) {
    // Wide from the start, so that the compiler puts the boxes' offsets into the addresses instead of adding them.
    const std::uint64_t wide = x, high = wide >> 16;
    return ((s[high >> 8] + (s + 256)[high & 255]) ^ (s + 512)[(wide >> 8) & 255]) + (s + 768)[wide & 255];
}

template <Direction direction> constexpr std::size_t KeyOfRound(std::size_t round) {
    return direction == Direction::encipher ? round : 17 - round;
}

template <std::size_t round, Direction direction, std::size_t lanes>
[[gnu::always_inline]] inline void Round(const BlowfishTables& tables, std::array<std::uint32_t, lanes>& changed,
                                         const std::array<std::uint32_t, lanes>& from) {
    const std::uint32_t key = tables.p[KeyOfRound<direction>(round)];
    for (std::size_t i = 0; i < lanes; ++i) changed[i] ^= F(tables.s.data(), from[i]) ^ key;
}

// The halves are not exchanged between rounds, they alternate; the exchange that remains at the end is the one that the
// algorithm reverses.
template <Direction direction, std::size_t lanes>
[[gnu::always_inline]] inline void AllRounds(const BlowfishTables& tables, Halves<lanes>& block) {
    const auto first = tables.p[KeyOfRound<direction>(0)], last = tables.p[KeyOfRound<direction>(17)];
    for (std::uint32_t& left : block.left) left ^= first;
    [&]<std::size_t... pair>(std::index_sequence<pair...>) {
        ((Round<2 * pair + 1, direction>(tables, block.right, block.left),
          Round<2 * pair + 2, direction>(tables, block.left, block.right)),
         ...);
    }
    (std::make_index_sequence<8>());
    for (std::uint32_t& right : block.right) right ^= last;
    std::swap(block.left, block.right);
}

std::uint32_t Load(const unsigned char* bytes) {
    std::array<std::byte, 4> copy;
    std::memcpy(copy.data(), bytes, copy.size());
    return FromLittleEndian<std::uint32_t>(copy);
}

void Store(std::uint32_t value, unsigned char* bytes) {
    const auto copy = ToLittleEndian(value);
    std::memcpy(bytes, copy.data(), copy.size());
}

template <Direction direction, std::size_t lanes>
[[gnu::always_inline]] inline void Work(const BlowfishTables& tables, const unsigned char* in, unsigned char* out) {
    Halves<lanes> blocks;
    for (std::size_t i = 0; i < lanes; ++i) {
        blocks.left[i] = Load(in + i * kBlowfishBlock);
        blocks.right[i] = Load(in + i * kBlowfishBlock + 4);
    }
    AllRounds<direction>(tables, blocks);
    for (std::size_t i = 0; i < lanes; ++i) {
        Store(blocks.left[i], out + i * kBlowfishBlock);
        Store(blocks.right[i], out + i * kBlowfishBlock + 4);
    }
}

template <Direction direction>
void ProcessBlocks(const BlowfishTables& tables, const unsigned char* in, unsigned char* out, std::size_t blocks) {
    std::size_t done = 0;
    for (; blocks - done >= kLanes; done += kLanes) {
        Work<direction, kLanes>(tables, in + done * kBlowfishBlock, out + done * kBlowfishBlock);
    }
    for (; done < blocks; ++done) {
        Work<direction, 1>(tables, in + done * kBlowfishBlock, out + done * kBlowfishBlock);
    }
}

template <Direction direction>
void ProcessBlock(const BlowfishTables& tables, std::uint32_t& left, std::uint32_t& right) {
    Halves<1> block = {{left}, {right}};
    AllRounds<direction>(tables, block);
    left = block.left[0];
    right = block.right[0];
}

}  // namespace

void MakeBlowfishTables(BlowfishTables& tables, std::span<const unsigned char> key) {
    tables = kBlowfishStart;
    if (!key.empty()) {
        std::size_t next = 0;
        for (std::uint32_t& word : tables.p) {
            std::uint32_t part = 0;
            for (int i = 0; i < 4; ++i) {
                part = part << 8 | key[next];
                next = next + 1 < key.size() ? next + 1 : 0;
            }
            word ^= part;
        }
    }
    Halves<1> chain = {{0}, {0}};
    const auto fill = [&](auto& words) {
        for (std::size_t i = 0; i < words.size(); i += 2) {
            AllRounds<Direction::encipher>(tables, chain);
            words[i] = chain.left[0];
            words[i + 1] = chain.right[0];
        }
    };
    fill(tables.p);
    fill(tables.s);
}

void EncipherBlowfish(const BlowfishTables& tables, std::uint32_t& left, std::uint32_t& right) {
    ProcessBlock<Direction::encipher>(tables, left, right);
}

void DecipherBlowfish(const BlowfishTables& tables, std::uint32_t& left, std::uint32_t& right) {
    ProcessBlock<Direction::decipher>(tables, left, right);
}

void EncipherBlowfish(const BlowfishTables& tables, const unsigned char* in, unsigned char* out, std::size_t blocks) {
    ProcessBlocks<Direction::encipher>(tables, in, out, blocks);
}

void DecipherBlowfish(const BlowfishTables& tables, const unsigned char* in, unsigned char* out, std::size_t blocks) {
    ProcessBlocks<Direction::decipher>(tables, in, out, blocks);
}

}  // namespace qel
