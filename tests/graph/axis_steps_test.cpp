#include "qellib10/graph/axis_steps.h"

#include <cmath>
#include <limits>

#include "../support/test.h"

// First and last line and the number of steps.
TEST(AxisSteps, IncludeAllValuesAtRoundNumbers) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    constexpr auto kFew = qel::RoundSteps::kWithoutQuarters, kMore = qel::RoundSteps::kWithQuarters;
    for (const auto& [low, high, most, round, expected] : Cases<double, double, int, qel::RoundSteps, const char*>{
             {3.2, 11.7, 10, kFew, "3 12 9"},
             {11.7, 3.2, 10, kFew, "3 12 9"},
             {0, 24, 10, kFew, "0 25 5"},
             {0, 24, 10, kMore, "0 25 10"},
             {0, 1.7, 10, kFew, "0 1.8 9"},
             {0.0075, 0.0225, 6, kMore, "0.0075 0.0225 6"},
             {0.3, -0.1, 1, kFew, "-0.5 0.5 2"},
             {1.5, 1.5, 10, kFew, "0.6 2.4 9"},
             {0, 1e-320, 10, kFew, "-1 1 10"},
             {NAN, 1, 10, kFew, "0 1 1"},
             {-kLargest, kLargest, 10, kFew, "-1.797693135e+308 1.797693135e+308 8"},
             {1, std::nextafter(1, 2), 10, kFew, "1 1 8"},
             {0, 7, -3, kFew, "0 10 1"},
         }) {
        const qel::AxisSteps steps = qel::StepsOver(low, high, most, round);
        EXPECT_EQ(Line({steps.Text(0), steps.Text(steps.count), steps.count}), expected) << low << ' ' << high;
    }
}

TEST(AxisSteps, LinesAreTheNumbersThatAreWritten) {
    EXPECT_EQ((qel::AxisSteps{0.2, 0, 5}.Value(3)), 0.6);
    EXPECT_EQ((qel::AxisSteps{2.5e-3, -3, 5}.Value(0)), -0.0075);
    EXPECT_EQ((qel::AxisSteps{0.3, 0, 5}.Value(3)), 3 * 0.3);
    EXPECT_EQ((qel::AxisSteps{1e-5, 0, 5}.Text(3)), "3e-05");
}
