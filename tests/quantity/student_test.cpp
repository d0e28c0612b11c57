#include "qellib10/platform/statistics/student.h"

#include <cmath>

#include "../support/output_of.h"
#include "../support/test.h"
#include "qellib10/base/read_number.h"

namespace {

constexpr double kInfinite = INFINITY;

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
             {0.9545, kInfinite, "20000"},
             {0.95, kInfinite, "19600"},
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
        const double n = degrees == "inf" ? kInfinite : qel::ReadNumber(degrees).value();
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
