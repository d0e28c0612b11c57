#include "qellib10/platform/decimal/decimal_fast.h"

#include <array>
#include <charconv>
#include <random>

#include "../support/soak.h"
#include "../support/test.h"
#include "decimal_words.h"
#include "qellib10/platform/decimal/dec_digits.h"

namespace {

using qel::Decimal;
using qel::DecimalFlags;

struct Pair {
    std::string a, b;
};

// Coefficients in which carries, ties, many zeros and estimates that are one too high are frequent.
std::string RandomCoefficient(std::mt19937_64& random) {
    const auto digits = 1 + static_cast<std::size_t>(random() % (random() % 2 == 0 ? 34 : 8));
    switch (random() % 8) {
        case 0:
            return std::string(digits, '9');
        case 1:
            return '1' + std::string(digits - 1, '0');
        case 2:
            return '5' + std::string(digits - 1, '0');
        case 3:
            return '1' + std::string(digits / 2, '0') + '1';
        case 4: {  // near a multiple of 2 to the power 64
            const auto number = static_cast<qel::Wide>(random() % 542'101'086'242'752) << 64;
            return Decimal(qel::DecimalAccess::Finite(false, number + random() % 3, 0)).Text();
        }
        default:
            std::string text;
            for (std::size_t i = 0; i < digits; ++i) text += static_cast<char>('0' + random() % 10);
            return text;
    }
}

std::string RandomNumber(std::mt19937_64& random) {
    static constexpr std::array kSpecial = {"0", "-0", "0e-40", "Infinity", "-Infinity", "NaN", "9e6144", "1e-6176"};
    if (random() % 64 == 0) return kSpecial[random() % kSpecial.size()];
    const int spread = random() % 32 == 0 ? 12'000 : random() % 3 == 0 ? 80 : 10;
    const int exponent = static_cast<int>(random() % static_cast<unsigned>(spread)) - spread / 2;
    return (random() % 2 == 0 ? "-" : "") + RandomCoefficient(random) + 'e' + std::to_string(exponent);
}

// What decNumber has, without the conversions that are tested.
class Peer {
public:
    Peer(const Pair& pair) {
        decNumberFromString(m_a.Get(), pair.a.c_str(), &m_context);
        decNumberFromString(m_b.Get(), pair.b.c_str(), &m_context);
        m_context.status = 0;
    }

    template <class Operation> std::string Of(Operation operation, rounding mode = DEC_ROUND_HALF_EVEN) {
        m_context.round = mode;
        qel::DecNumber result;
        operation(result.Get(), m_a.Get(), m_b.Get(), &m_context);
        DecimalFlags flags;
        qel::AddFlags(flags, m_context.status);
        m_context.status = 0;
        std::array<char, Decimal::kDigits + 14> text;
        return decNumberToString(result.Get(), text.data()) + Words(flags);
    }

    std::string Reduced() {
        qel::DecNumber result;
        decNumberReduce(result.Get(), m_a.Get(), &m_context);
        std::array<char, Decimal::kDigits + 14> text;
        return decNumberToString(result.Get(), text.data());
    }

    int Order() { return std::stoi(Of(decNumberCompare)); }

private:
    decContext m_context = qel::kDecimalContext;
    qel::DecNumber m_a, m_b;
};

int OrderOf(const Decimal& a, const Decimal& b) { return a < b ? -1 : a > b ? 1 : 0; }

}  // namespace

TEST(DecimalFast, HasTheResultsOfDecNumber) {
    using Operation = Decimal (*)(const Decimal&, const Decimal&, DecimalFlags&);
    const Cases<const char*, Operation, decNumber* (*)(decNumber*, const decNumber*, const decNumber*, decContext*)>
        operations = {{"+", qel::Add, decNumberAdd},
                      {"-", qel::Subtract, decNumberSubtract},
                      {"*", qel::Multiply, decNumberMultiply},
                      {"/", qel::Divide, decNumberDivide},
                      {"%", qel::Remainder, decNumberRemainder}};
    const Cases<qel::DecimalRounding, rounding> roundings = {
        {qel::DecimalRounding::kHalfEven, DEC_ROUND_HALF_EVEN},
        {qel::DecimalRounding::kHalfAwayFromZero, DEC_ROUND_HALF_UP},
        {qel::DecimalRounding::kTowardZero, DEC_ROUND_DOWN},
        {qel::DecimalRounding::kAwayFromZero, DEC_ROUND_UP}};
    const int count = SoakCount(100'000);
    std::mt19937_64 random(SoakSeed());
    for (int i = 0; i < count && !HasFailure(); ++i) {
        const Pair pair{RandomNumber(random), RandomNumber(random)};
        Peer peer(pair);
        const Decimal a = DecimalOf(pair.a), b = DecimalOf(pair.b);
        for (const auto& [name, operation, expected] : operations) {
            DecimalFlags flags;
            const Decimal result = operation(a, b, flags);
            EXPECT_EQ(result.Text() + Words(flags), peer.Of(expected)) << pair.a << ' ' << name << ' ' << pair.b;
        }
        for (const auto& [ours, theirs] : roundings) {
            DecimalFlags flags;
            const Decimal result = RoundTo(a, b.Exponent(), ours, flags);
            if (!b.IsFinite()) continue;
            EXPECT_EQ(result.Text() + Words(flags), peer.Of(decNumberQuantize, theirs))
                << pair.a << " to the last place of " << pair.b;
        }
        EXPECT_EQ(a.Reduced().Text(), peer.Reduced()) << pair.a;
        if (a.IsNan() || b.IsNan()) continue;
        EXPECT_EQ(OrderOf(a, b), peer.Order()) << pair.a << ' ' << pair.b;
    }
    Tried("pairs", count);
}

TEST(DecimalFast, ReadsAndWritesAsTheCLibraryDoes) {
    std::mt19937_64 random(SoakSeed());
    for (int i = 0; i < 20'000 && !HasFailure(); ++i) {
        const std::string text = RandomNumber(random);
        Peer peer({text, "0"});
        const Decimal value = DecimalOf(text);
        EXPECT_EQ(value.Text(), peer.Of([](decNumber* result, const decNumber* a, const decNumber*, decContext*) {
            return decNumberCopy(result, a);
        }));
        double expected = 0.0;
        const std::string digits = value.Text();
        const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), expected);
        if (end.ec != std::errc() || !value.IsFinite()) continue;
        EXPECT_EQ(value.ToDouble(), expected) << text;
    }
}
