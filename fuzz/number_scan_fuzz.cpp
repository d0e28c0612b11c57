// Laws: a number read from the beginning of any text is the one that the C library reads from the accepted bytes, and a
// whole number the one that it reads from the text. A number that is a whole text is the one that the C library reads
// from all of it, and its own text reads as the same number.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "qellib10/base/read_number.h"
#include "qellib10/platform/text/number_scan.h"

namespace {

void CheckWholeNumber(std::string text) {
    const auto number = qel::ReadNumber(text);
    if (!number) return;
    std::ranges::replace(text, ',', '.');
    const double expected = std::strtod(text.c_str(), nullptr);
    const auto again = qel::ReadNumber(qel::NumberText(*number).View());
    if (*number != expected || again != number) std::abort();
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
