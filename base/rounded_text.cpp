#include "qellib10/base/rounded_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/text/number_text.h"

#include "qellib10/base/power_of_ten.h"
#include "qellib10/base/rounded_units.h"

namespace qel {
namespace {

constexpr std::array<std::uint32_t, 9> kPowers = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
constexpr int kMaxDigits = 8;  // before the point, and after it

// Below this many units their number and the double have the same digits.
constexpr std::uint64_t kFirstInexact = std::uint64_t{1} << 51;

// Doubles from 2^53 units on are more than a unit apart: the number itself has all the digits there are, while the
// product used for rounding is wrong by several units.
constexpr double kNothingToRound = 0x1p53 * 10;  // in tenths of a unit

// The eight digits of a number below 10^8, the first in the lowest byte. Halves, pairs and digits are split in parallel
// in one word; 10486 / 2^20 and 103 / 2^10 are a hundredth and a tenth, exact for numbers of four and two digits.
std::uint64_t EightDigits(std::uint32_t number) {
    const std::uint64_t halves = number / 10000 | std::uint64_t{number % 10000} << 32;
    const std::uint64_t hundreds = (halves * 10486) >> 20 & 0x0000007F0000007F;
    const std::uint64_t pairs = hundreds | (halves - hundreds * 100) << 16;
    const std::uint64_t tens = (pairs * 103) >> 10 & 0x000F000F000F000F;
    return (tens | (pairs - tens * 10) << 8) + 0x3030303030303030;
}

// Writes the last @p count digits of a number below 10^8; all eight bytes at @p at are overwritten.
void PutDigits(char* at, std::uint32_t number, int count) {
    const std::uint64_t text = EightDigits(number) >> 8 * (kMaxDigits - count);
    std::memcpy(at, ToLittleEndian(text).data(), sizeof text);
}

// Digits of a number below 10^8, at least one. 1233 / 2^12 is the decimal logarithm of 2; no power of ten from 10 on is
// odd, so setting the lowest bit changes only 0.
int CountDigits(std::uint32_t number) {
    const std::uint32_t odd = number | 1;
    const unsigned estimate = static_cast<unsigned>(std::bit_width(odd)) * 1233 >> 12;
    return static_cast<int>(estimate + (odd >= kPowers[estimate] ? 1 : 0));
}

struct Parts {
    std::uint32_t whole;
    std::uint32_t fraction;
};

// Both parts are below 10^8. The narrower division is faster, on some processors by far.
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

// A short text, built in registers: the first eight characters (the first one in the lowest byte), and the others. It
// is written to memory in one piece: reading a piece that spans two that were just written would take as long as
// everything else.
struct ShortText {
    using Words = std::uint64_t __attribute__((vector_size(16)));
    Words words;
    int length;  // below kInPlace
};

std::uint64_t InMemory(std::uint64_t word) { return std::bit_cast<std::uint64_t>(ToLittleEndian(word)); }

constexpr int kMaxShortDigits = kMaxDigits - 1;  // a sign is the eighth character

// The text of a number of up to kMaxShortDigits digits, including a zero before the point. @p decimals is 1 to 6.
ShortText ShortFixedPoint(bool negative, std::uint32_t units, int decimals) {
    const int characters = std::max(CountDigits(units), decimals + 1) + (negative ? 1 : 0);
    // Before the first digit there is a zero, which becomes the sign.
    constexpr std::uint64_t kZeroToSign = '0' ^ '-';
    const std::uint64_t text = EightDigits(units) >> 8 * (kMaxDigits - characters) ^ (negative ? kZeroToSign : 0);
    // The point is put between the digits, and those after it move by one.
    const int point = 8 * (characters - decimals);  // in bits, at most 56
    const std::uint64_t whole = text & ((std::uint64_t{1} << point) - 1);
    const ShortText::Words words = {InMemory(whole | std::uint64_t{'.'} << point | (text ^ whole) << 8),
                                    InMemory(text >> 56)};
    return {words, characters + 1};
}

constexpr int kInPlace = 15;  // a text of this length needs no block of its own

// Copies kInPlace bytes, whatever @p length is: a fixed number needs no loop.
CString InPlace(const char* bytes, int length) {
    CString text(std::string_view(bytes, kInPlace));
    text.ReleaseBuffer(length);
    return text;
}

// Separate, so that the short way saves no registers for it.
[[gnu::noinline]] CString LongRoundedText(double x, int digits, int mode) {
    std::array<char, kQuickTextSize> buffer{};
    const int length = WriteQuickRoundedText(x, digits, mode, buffer.data());
    if (length == 0) return RoundedTextByRule(x, digits, mode);
    return length <= kInPlace ? InPlace(buffer.data(), length) : CString(buffer.data(), length);
}

}  // namespace

int WriteQuickRoundedText(double x, int digits, int mode, char* at) {
    if (digits > kMaxDigits) return 0;
    const std::uint64_t units = RoundedTenths(x, digits, mode) / 10;
    const std::uint32_t unitsOfOne = kPowers[static_cast<unsigned>(digits)];
    if (units >= kFirstInexact || units >= std::uint64_t{unitsOfOne} * kPowers[kMaxDigits]) return 0;
    return WriteFixedPoint(x < 0, Split(units, unitsOfOne), digits, at);
}

CString RoundedTextByRule(double x, int digits, int mode) {
    const bool isItself = mode == 0 && InTenths(x, digits) >= kNothingToRound;
    return CString(std::string_view(FixedText(isItself ? x : RoundByRule(x, digits, mode), digits)));
}

CString RoundedText(double x, int digits, int mode) {
    if (digits < kMaxShortDigits) {
        const std::uint64_t tenths = RoundedTenths(x, digits, mode);
        if (tenths < 10 * std::uint64_t{kPowers[kMaxShortDigits]}) [[likely]] {
            const ShortText text = ShortFixedPoint(x < 0, static_cast<std::uint32_t>(tenths) / 10, digits);
            return InPlace(reinterpret_cast<const char*>(&text.words), text.length);
        }
    }
    return LongRoundedText(x, digits, mode);
}

}  // namespace qel
