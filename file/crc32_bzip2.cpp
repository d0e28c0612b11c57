#include "qellib10/file/crc32_bzip2.h"

#include <array>
#include <cstddef>

namespace qel {
namespace {

constexpr std::size_t kSlices = 16;
using CrcTable = std::array<std::uint32_t, 256>;

// Table 0 processes one byte; table n processes it and n further zero bytes.
constexpr std::array<CrcTable, kSlices> kTables = [] {
    std::array<CrcTable, kSlices> tables = {};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t crc = i << 24;
        for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc >> 31) * kCrcPolynomial);
        tables[0][i] = crc;
    }
    for (std::size_t n = 1; n < kSlices; ++n) {
        for (std::size_t i = 0; i < 256; ++i) {
            const std::uint32_t before = tables[n - 1][i];
            tables[n][i] = (before << 8) ^ tables[0][before >> 24];
        }
    }
    return tables;
}();

// The slices of one big-endian word, its first byte @p last + 3 tables before the end.
inline std::uint32_t Slice(const unsigned char* bytes, std::uint32_t crc, std::size_t last) {
    return kTables[last + 3][bytes[0] ^ (crc >> 24)] ^ kTables[last + 2][bytes[1] ^ ((crc >> 16) & 0xFF)] ^
           kTables[last + 1][bytes[2] ^ ((crc >> 8) & 0xFF)] ^ kTables[last][bytes[3] ^ (crc & 0xFF)];
}

}  // namespace

std::uint32_t CrcByByte(std::uint32_t crc, std::span<const unsigned char> bytes) noexcept {
    for (const unsigned char byte : bytes) crc = (crc << 8) ^ kTables[0][(crc >> 24) ^ byte];
    return crc;
}

std::uint32_t CrcBySlices(std::uint32_t crc, std::span<const unsigned char> bytes) noexcept {
    while (bytes.size() >= kSlices) {
        const unsigned char* at = bytes.data();
        crc = Slice(at, crc, 12) ^ Slice(at + 4, 0, 8) ^ Slice(at + 8, 0, 4) ^ Slice(at + 12, 0, 0);
        bytes = bytes.subspan(kSlices);
    }
    return CrcByByte(crc, bytes);
}

}  // namespace qel
