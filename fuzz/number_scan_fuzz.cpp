// Laws: a number read from the start of any text is the one that the C library reads from the accepted bytes, and a
// whole number the one that it reads from the text. A text that the C library reads completely, and that has the form
// of a number, is one, and no other text is; its own text reads as the same number. The sign of 0 matters.
#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "qellib10/base/read_number.h"
#include "qellib10/platform/text/number_scan.h"

namespace {

bool IsSame(std::optional<double> a, double b) {
    return a && std::bit_cast<std::uint64_t>(*a) == std::bit_cast<std::uint64_t>(b);
}

void CheckWholeNumber(std::string text) {
    const auto number = qel::ReadNumber(text);
    text.erase(text.find_last_not_of("\t\n\v\f\r ") + 1);  // strtod skips those before it
    std::ranges::replace(text, ',', '.');
    const bool hasForm = text.find_first_not_of("\t\n\v\f\r 0123456789.eE+-") == std::string::npos;
    char* end = nullptr;
    errno = 0;
    const double expected = std::strtod(text.c_str(), &end);
    // Denormal numbers are in range, though strtod may report them.
    const bool isInRange = errno != ERANGE || (expected != 0 && std::isfinite(expected));
    const bool isNumber = hasForm && !text.empty() && end == text.c_str() + text.size() && isInRange;
    if (number.has_value() != isNumber) std::abort();
    if (isNumber && !(IsSame(number, expected) && IsSame(qel::ReadNumber(qel::NumberText(expected)), expected)))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;
    std::string text(reinterpret_cast<const char*>(data), size);
    if (qel::ScanInteger(text) != std::strtoll(text.c_str(), nullptr, 10)) std::abort();
    CheckWholeNumber(text);

    const qel::ScannedNumber number = qel::ScanNumber(text);
    if (number.length > size) std::abort();
    text.resize(number.length);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size()) std::abort();
    if (std::bit_cast<std::uint64_t>(number.value) != std::bit_cast<std::uint64_t>(expected)) std::abort();
    return 0;
}
