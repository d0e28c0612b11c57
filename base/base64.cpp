#include "qellib10/base/base64.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <span>

#include "qellib10/base/base64_avx2.h"
#include "qellib10/base/base64_plain.h"

namespace {

std::int64_t EncodedSize(int n) { return (std::int64_t{std::max(n, 0)} + 2) / 3 * 4; }

void Encode(std::span<const unsigned char> source, char* target) {
    const std::size_t taken = qel::HasAvx2() ? qel::EncodeBase64Avx2(source, target) : 0;
    qel::EncodeBase64Plain(source.subspan(taken), target + taken / 3 * 4);
}

void Decode(std::span<const char> source, unsigned char* target) {
    const std::size_t taken = qel::HasAvx2() ? qel::DecodeBase64Avx2(source, target) : 0;
    qel::DecodeBase64Plain(source.subspan(taken), target + taken / 4 * 3);
}

// Bytes that the padding in the last group (complete or not) subtracts.
int PaddingIn(std::span<const char> group) {
    if (group.size() > 2 && group[2] == qel::kBase64Padding) return 2;
    return group.size() > 3 && group[3] == qel::kBase64Padding ? 1 : 0;
}

// The three bytes of a group whose last characters are missing.
std::array<unsigned char, 3> PartialGroup(std::span<const char> characters) {
    std::array<char, 4> group = {};
    std::ranges::copy(characters, group.begin());
    std::array<unsigned char, 3> bytes;
    qel::DecodeBase64Plain(group, bytes.data());
    return bytes;
}

}  // namespace

CBase64::~CBase64() = default;

int CBase64::GetBinToBase64Size(int n) {
    const std::int64_t size = EncodedSize(n);
    return size <= std::numeric_limits<int>::max() ? static_cast<int>(size) : 0;
}

int CBase64::GetBase64ToBinSize(int n) { return std::max(n, 0) / 4 * 3; }

BOOL CBase64::GetBinToBase64(const unsigned char* src, int n, char* dst, int& dstSize) {
    const std::int64_t need = EncodedSize(n);
    if (need > dstSize || (n > 0 && (src == nullptr || dst == nullptr))) return 0;
    dstSize = static_cast<int>(need);
    if (n > 0) Encode(std::span(src, static_cast<std::size_t>(n)), dst);
    return 1;
}

BOOL CBase64::GetBase64ToBin(const char* src, int n, unsigned char* dst, int& dstSize) {
    const int need = GetBase64ToBinSize(n);
    if (need > dstSize || (n > 0 && (src == nullptr || (dst == nullptr && dstSize > 0)))) return 0;
    const int room = dstSize - need;
    dstSize = need;
    if (n < 1) return 1;

    const std::span source(src, static_cast<std::size_t>(n));
    const std::size_t whole = source.size() / 4 * 4;
    // Both are read before decoding, which may be in place.
    dstSize = std::max(need - PaddingIn(source.subspan((source.size() - 1) / 4 * 4)), 0);
    const std::array partial = PartialGroup(source.subspan(whole));

    Decode(source.first(whole), dst);
    if (whole < source.size()) std::copy_n(partial.begin(), std::min(room, 3), dst + need);
    return 1;
}

unsigned char CBase64::GetConvertBase64Char(int toBase64, unsigned char c) {
    if (toBase64 == 0) return qel::kBase64Values[c];
    return static_cast<unsigned char>(c < qel::kBase64Alphabet.size() ? qel::kBase64Alphabet[c] : qel::kBase64Padding);
}
