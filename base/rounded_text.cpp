#include "qellib10/base/rounded_text.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/text/number_text.h"

#include "qellib10/base/rounded_units.h"

namespace qel {
namespace {

constexpr std::array<std::uint32_t, 9> kPowers = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
constexpr int kMostDigits = 8;  // before the point, and behind it

// Below so many units their number and the double have the same digits.
constexpr std::uint64_t kFirstInexact = std::uint64_t{1} << 51;

// The eight digits of a number below 10^8, the first in the lowest byte. Halves, pairs and digits are split side by
// side in one word; 10486 / 2^20 and 103 / 2^10 are a hundredth and a tenth, exact for numbers of four and two digits.
std::uint64_t EightDigits(std::uint32_t number) {
    const std::uint64_t halves = number / 10000 | std::uint64_t{number % 10000} << 32;
    const std::uint64_t hundreds = (halves * 10486) >> 20 & 0x0000007F0000007F;
    const std::uint64_t pairs = hundreds | (halves - hundreds * 100) << 16;
    const std::uint64_t tens = (pairs * 103) >> 10 & 0x000F000F000F000F;
    return (tens | (pairs - tens * 10) << 8) + 0x3030303030303030;
}

// Writes the last @p count digits of a number below 10^8; all of the eight bytes at @p at are overwritten.
void PutDigits(char* at, std::uint32_t number, int count) {
    const std::uint64_t text = EightDigits(number) >> 8 * (kMostDigits - count);
    std::memcpy(at, ToLittleEndian(text).data(), sizeof text);
}

// Digits of a number below 10^8, at least one. 1233 / 2^12 is the decimal logarithm of 2; no power of ten from 10 on is
// odd, so the lowest bit changes nothing but 0.
int CountDigits(std::uint32_t number) {
    const std::uint32_t odd = number | 1;
    const unsigned estimate = static_cast<unsigned>(std::bit_width(odd)) * 1233 >> 12;
    return static_cast<int>(estimate + (odd >= kPowers[estimate] ? 1 : 0));
}

struct Parts {
    std::uint32_t whole;
    std::uint32_t fraction;
};

// Both parts are below 10^8. The narrower division is the quicker one, on some processors by far.
Parts Split(std::uint64_t units, std::uint32_t unitsOfOne) {
    if (const auto narrow = static_cast<std::uint32_t>(units); narrow == units) {
        return {narrow / unitsOfOne, narrow % unitsOfOne};
    }
    return {static_cast<std::uint32_t>(units / unitsOfOne), static_cast<std::uint32_t>(units % unitsOfOne)};
}

int WriteFixedPoint(bool negative, Parts number, int decimals, char* at) {
    *at = '-';
    char* const begin = at + (negative ? 1 : 0);
    const int wholeDigits = CountDigits(number.whole);
    PutDigits(begin, number.whole, wholeDigits);
    begin[wholeDigits] = '.';
    PutDigits(begin + wholeDigits + 1, number.fraction, decimals);
    return static_cast<int>(begin - at) + wholeDigits + 1 + decimals;
}

// A text of 15 bytes needs no block of its own, and copying a fixed number of bytes no loop.
CString Text(const std::array<char, kQuickTextRoom>& buffer, int length) {
    constexpr int kInPlace = 15;
    CString text(std::string_view(buffer.data(), kInPlace));
    if (length <= kInPlace) {
        text.ReleaseBuffer(length);
    } else {
        text = CString(buffer.data(), length);
    }
    return text;
}

}  // namespace

int WriteQuickRoundedText(double x, int digits, int mode, char* at) {
    if (digits > kMostDigits) return 0;
    const std::uint64_t units = RoundedTenths(x, digits, mode) / 10;
    const std::uint32_t unitsOfOne = kPowers[static_cast<unsigned>(digits)];
    if (units >= kFirstInexact || units >= std::uint64_t{unitsOfOne} * kPowers[kMostDigits]) return 0;
    return WriteFixedPoint(x < 0, Split(units, unitsOfOne), digits, at);
}

CString RoundedTextByRule(double x, int digits, int mode) {
    return CString(std::string_view(FixedText(RoundByRule(x, digits, mode), digits)));
}

CString RoundedText(double x, int digits, int mode) {
    std::array<char, kQuickTextRoom> buffer{};
    const int length = WriteQuickRoundedText(x, digits, mode, buffer.data());
    return length > 0 ? Text(buffer, length) : RoundedTextByRule(x, digits, mode);
}

}  // namespace qel
