#include "qellib10/base/rounded_text.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

#include "qellib10/platform/text/number_text.h"

#include "qellib10/base/rounded_units.h"
#include "qellib10/base/rounding.h"

namespace qel {
namespace {

constexpr std::int64_t kFirstInexact = std::int64_t{1} << 51;

constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (unsigned i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

// Writes text from its end backwards.
class BackwardText {
public:
    void Put(char character) { *--m_begin = character; }

    // The last @p count digits of @p number, which loses them.
    void PutDigits(std::uint64_t& number, int count) {
        for (; count > 1; count -= 2, number /= 100) PutPair(number % 100);
        if (count > 0) PutDigit(number);
    }
    // All digits, at least one.
    void PutNumber(std::uint64_t number) {
        for (; number >= 100; number /= 100) PutPair(number % 100);
        if (number >= 10) {
            PutPair(number);
        } else {
            PutDigit(number);
        }
    }

    std::string_view View() const {
        return {m_begin, static_cast<std::size_t>(m_buffer.data() + m_buffer.size() - m_begin)};
    }

private:
    void PutPair(std::uint64_t pair) {
        m_begin -= 2;
        std::memcpy(m_begin, &kPairs[2 * pair], 2);
    }
    void PutDigit(std::uint64_t& number) {
        Put(static_cast<char>('0' + number % 10));
        number /= 10;
    }

    std::array<char, 48> m_buffer;  // sign, up to 16 digits, the point, kMostQuickDigits decimals
    char* m_begin = m_buffer.data() + m_buffer.size();
};

CString UnitsText(bool negative, std::int64_t units, int digits) {
    BackwardText text;
    auto number = static_cast<std::uint64_t>(units);
    text.PutDigits(number, digits);
    text.Put('.');
    text.PutNumber(number);
    if (negative) text.Put('-');
    return CString(text.View());
}

}  // namespace

CString RoundedTextByRule(double x, int digits, int mode) {
    return CString(FixedText(RoundByRule(x, digits, mode), digits));
}

CString RoundedText(double x, int digits, int mode) {
    const std::optional<std::int64_t> units = RoundedUnits(x, digits, mode);
    if (units && *units < kFirstInexact) return UnitsText(x < 0, *units, digits);
    return RoundedTextByRule(x, digits, mode);
}

}  // namespace qel
