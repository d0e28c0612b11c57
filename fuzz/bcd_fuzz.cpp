// Laws, for any two numbers, mode, places and width: a field is filled to its last character; plain digits read again
// and written again are the same; rounding twice is rounding once; two numbers have one order, which their difference
// shows; a power is its product.
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "qellib10/calc/bcd.h"

#include "law.h"

namespace {

constexpr std::size_t kHeaderSize = 8, kLongestUsefulInput = 4096;
constexpr int kWidestField = 300, kHighestPower = 40, kMaxPlacesWithinText = 40;

bool IsFinite(const CBCD& number) { return number > "-Infinity" && number < "Infinity"; }

void CheckRounding(CBCD number, int decimals, rounding mode) {
    number.Round(decimals, mode);
    CBCD again = number;
    again.Round(decimals, mode);
    Require(again == number);
}

void CheckText(CBCD number, int width, int decimals, rounding mode) {
    std::vector<char> field(width + 1);
    number.GetString(field.data(), width, decimals, mode);
    Require(std::strlen(field.data()) == static_cast<std::size_t>(width));

    number.GetDouble(decimals, mode);
    const CString text = number.GetString(decimals, mode);
    const char* const plain = text;
    if (decimals > kMaxPlacesWithinText || plain[std::strspn(plain, "-.0123456789")] != '\0') return;
    Require(CBCD(plain).GetString(decimals, mode) == text);
}

void CheckOrder(CBCD a, const CBCD& b) {
    Require((a < b) + (a == b) + (a > b) == 1 && (a < b) == (b > a));
    if (!IsFinite(a) || !IsFinite(b)) return;
    const CBCD difference = a - b;
    Require((difference > 0) == (a > b) && (difference == 0) == (a == b));
}

void CheckPower(const CBCD& number, unsigned int n) {
    CBCD product("1.0");
    for (unsigned int i = 0; i < n; ++i) product *= number;
    Require((number ^ n) == product);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kHeaderSize || size > kLongestUsefulInput) return 0;
    const auto mode = static_cast<rounding>(data[0] % (DEC_ROUND_MAX + 1));
    const unsigned int power = data[1] % (kHighestPower + 1);
    const int width = (data[2] | data[3] << 8) % (kWidestField + 1);
    std::int32_t decimals;
    std::memcpy(&decimals, data + 4, sizeof decimals);
    const std::string texts(data + kHeaderSize, data + size);  // two numbers, one per line
    const std::size_t end = texts.find('\n');
    CBCD a(texts.substr(0, end).c_str()), b(end == std::string::npos ? "" : texts.c_str() + end + 1);

    for (const CBCD& number : {a, b, a + b, a * b, a / b, CBCD::SquareRoot(a)}) {
        CheckRounding(number, decimals, mode);
        CheckText(number, width, decimals, mode);
        CheckPower(number, power);
    }
    CheckOrder(a, b);
    return 0;
}
