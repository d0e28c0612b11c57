// Law: a number read from the beginning of any text is the one that the C library reads from the accepted bytes, and a
// whole number the one that it reads from the text.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "qellib10/platform/text/number_scan.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;
    std::string text(reinterpret_cast<const char*>(data), size);
    if (qel::ScanInteger(text) != std::strtoll(text.c_str(), nullptr, 10)) std::abort();

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
