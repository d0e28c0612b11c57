#include "qellib10/platform/text/name_hash.h"

#include <cstddef>
#include <cstring>

#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::uint64_t kEachByte = 0x0101010101010101;
constexpr std::uint64_t kHighBits = 0x80 * kEachByte;

template <typename Word> std::uint64_t Load(const char* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// A word made of at most 8 bytes; different for different bytes of the same length.
std::uint64_t LoadBytes(const char* from, std::size_t size) {
    if (size == 8) return Load<std::uint64_t>(from);
    if (size == 0) return 0;
    if (size >= 4) return Load<std::uint32_t>(from) | Load<std::uint32_t>(from + size - 4) << 32;
    return Load<std::uint8_t>(from) | Load<std::uint8_t>(from + size / 2) << 8 |
           Load<std::uint8_t>(from + size - 1) << 16;
}

// Changes A-Z to a-z in eight bytes at once, each below 80 hex: the sums set bit 7 from A on, and again after Z; two
// bits below it is the bit in which the cases differ.
constexpr std::uint64_t FoldAscii(std::uint64_t word) {
    const std::uint64_t fromA = word + (0x80 - 'A') * kEachByte;
    const std::uint64_t pastZ = word + (0x80 - 'Z' - 1) * kEachByte;
    return word | (fromA & ~pastZ & kHighBits) >> 2;
}

constexpr std::uint64_t Mixed(std::uint64_t hash, std::uint64_t more) {
    hash = (hash ^ more) * 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
    return hash ^ hash >> 32;
}

// Separate from the usual path, which needs no string and so no clean-up.
[[gnu::noinline]] std::uint64_t HashFolding(std::string_view name) {
    std::uint64_t hash = 0;
    for (const char byte : FoldName(name)) hash = Mixed(hash, static_cast<unsigned char>(byte));
    return hash;
}

}  // namespace

// Folding keeps ASCII within ASCII, so two equal names always take the same branch.
std::uint32_t HashFoldedName(std::string_view name) {
    const char* from = name.data();
    std::size_t left = name.size();
    std::uint64_t hash = left;
    std::uint64_t bytes = 0;  // all words or-ed together
    for (; left > 8; from += 8, left -= 8) {
        const std::uint64_t word = Load<std::uint64_t>(from);
        bytes |= word;
        hash = Mixed(hash, FoldAscii(word));
    }
    const std::uint64_t rest = LoadBytes(from, left);
    bytes |= rest;
    hash = Mixed(hash, FoldAscii(rest));
    return static_cast<std::uint32_t>((bytes & kHighBits) == 0 ? hash : HashFolding(name));
}

}  // namespace qel
