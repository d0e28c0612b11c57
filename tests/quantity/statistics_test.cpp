#include <algorithm>
#include <cmath>
#include <functional>

#include "../support/output_of.h"
#include "../support/test.h"
#include "qellib10/base/read_number.h"
#include "qellib10/platform/statistics/deviates.h"
#include "qellib10/platform/statistics/student.h"

namespace {

using qel::Philox;

double Within(double x) { return std::clamp(x, -1.0, 1.0); }

// The result in 4 places, as tables of Student's distribution have it.
std::string Rounded(double value) { return std::to_string(std::lround(value * 1e4)); }

}  // namespace

TEST(Student, HasTheFactorsOfTheTables) {
    for (const auto& [probability, degrees, expected] : Cases<double, double, const char*>{
             {0.95, 1, "127062"},
             {0.9545, 1, "139678"},
             {0.95, 4, "27764"},
             {0.9545, 10, "22837"},
             {0.99, 50, "26778"},
             {0.9545, INFINITY, "20000"},
             {0.95, INFINITY, "19600"},
         })
        EXPECT_EQ(Rounded(qel::CoverageFactor(probability, degrees)), expected) << probability << " " << degrees;
}

TEST(Student, AgreesWithScipy) {
    const std::string lines = OutputOf(QELLIB10_TEST_DATA "/../quantity/students_of_scipy");
    std::istringstream stream(lines);
    int count = 0;
    for (std::string probability, degrees, factor, below; stream >> probability >> degrees >> factor >> below;
         ++count) {
        const double p = qel::ReadNumber(probability).value();
        const double n = degrees == "inf" ? INFINITY : qel::ReadNumber(degrees).value();
        const double k = qel::ReadNumber(factor).value(), tail = qel::ReadNumber(below).value();
        EXPECT_NEAR(qel::CoverageFactor(p, n) / k, 1.0, 1e-12) << p << " " << n;
        EXPECT_NEAR(qel::StudentDistribution(-k, n) / tail, 1.0, 1e-10) << p << " " << n;
    }
    EXPECT_GT(count, 1000);
}

TEST(Student, HasNoResultOutsideOfItsRange) {
    for (const auto& [probability, degrees] :
         Cases<double, double>{{0.0, 5}, {1.0, 5}, {-0.5, 5}, {NAN, 5}, {0.95, 0}, {0.95, -1}, {0.95, NAN}})
        EXPECT_TRUE(std::isnan(qel::CoverageFactor(probability, degrees))) << probability << " " << degrees;
    EXPECT_TRUE(std::isnan(qel::StudentDistribution(NAN, 3)));
    EXPECT_EQ(Line({qel::StudentDistribution(INFINITY, 3), qel::StudentDistribution(-INFINITY, 3)}), "1 0");
}

// The known answers of the generator's authors.
TEST(Philox, EnciphersAsItsAuthorsDo) {
    for (const auto& [counter, key, expected] : Cases<Philox::Block, std::uint64_t, Philox::Block>{
             {{0, 0, 0, 0}, 0, {0x6627E8D5, 0xE169C58D, 0xBC57AC4C, 0x9B00DBD8}},
             {{~0U, ~0U, ~0U, ~0U}, ~0ULL, {0x408F276D, 0x41C83B0E, 0xA20BC7C6, 0x6D5451FD}},
             {{0x243F6A88, 0x85A308D3, 0x13198A2E, 0x03707344},
              0x299F31D0A4093822,
              {0xD16CFE09, 0x94FDCCEB, 0x5001E420, 0x24126EA1}},
         })
        EXPECT_EQ(Philox::Enciphered(counter, key), expected) << key;
}

TEST(Philox, StreamsHaveTheBitsOfTheCipher) {
    constexpr std::uint64_t kSeed = 0x0123456789ABCDEF, kBlock = 0xFEDCBA9876543210;
    Philox stream(kSeed, kBlock, 77);
    std::vector<std::uint64_t> drawn, expected;
    for (std::uint32_t i = 0; i < 64; ++i) {
        drawn.push_back(stream.Next());
        const auto [a, b, c, d] = Philox::Enciphered(
            {i / 32 * 16 + i % 16, 77, static_cast<std::uint32_t>(kBlock), static_cast<std::uint32_t>(kBlock >> 32)},
            kSeed);
        expected.push_back(i % 32 < 16 ? std::uint64_t{a} << 32 | b : std::uint64_t{c} << 32 | d);
    }
    EXPECT_EQ(drawn, expected);
}

// Parts of the deviates below each point, over several streams; five standard errors are allowed.
TEST(Deviates, HaveTheirDistributions) {
    struct Case {
        const char* name;
        std::function<double(Philox&)> draw;
        std::function<double(double)> below;
    };
    const auto triangle = [](double x) {
        const double at = Within(x / std::sqrt(6.0));
        return at < 0.0 ? (1 + at) * (1 + at) / 2 : 1 - (1 - at) * (1 - at) / 2;
    };
    for (const Case& c : {
             Case{"normal", qel::NormalDeviate, [](double x) { return qel::StudentDistribution(x, INFINITY); }},
             Case{"rectangular", qel::RectangularDeviate,
                  [](double x) { return (1 + Within(x / std::sqrt(3.0))) / 2; }},
             Case{"triangular", qel::TriangularDeviate, triangle},
             Case{"t of 1", [](Philox& stream) { return qel::StudentDeviate(stream, 1); },
                  [](double x) { return qel::StudentDistribution(x, 1); }},
             Case{"t of 2.5", [](Philox& stream) { return qel::StudentDeviate(stream, 2.5); },
                  [](double x) { return qel::StudentDistribution(x, 2.5); }},
             Case{"t of 9", [](Philox& stream) { return qel::StudentDeviate(stream, 9); },
                  [](double x) { return qel::StudentDistribution(x, 9); }},
         }) {
        constexpr int kCount = 400'000;
        std::vector<double> drawn;
        for (std::uint64_t block = 0; drawn.size() < kCount; ++block) {
            Philox stream(3, block, 0);
            for (int i = 0; i < 1000; ++i) drawn.push_back(c.draw(stream));
        }
        std::ranges::sort(drawn);
        for (const double x :
             {-4.5, -3.7, -3.0, -2.0, -1.7, -1.0, -0.5, -0.1, 0.0, 0.2, 0.7, 1.3, 1.71, 2.4, 3.66, 4.0}) {
            const auto count = std::ranges::lower_bound(drawn, x) - drawn.begin();
            const double expected = c.below(x);
            const double error = std::sqrt(expected * (1 - expected) / kCount) + 1e-12;
            EXPECT_NEAR(static_cast<double>(count) / kCount, expected, 5 * error) << c.name << " " << x;
        }
    }
}
