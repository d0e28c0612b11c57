#include "qellib10/graph/axis_style.h"

#include <cmath>
#include <limits>

#include "../support/test.h"

TEST(AxisStyle, ValuesAreWrittenInFields) {
    constexpr int kMost = std::numeric_limits<int>::max();
    for (const auto& [value, type, position, digit, decimal, expected] : Cases<double, int, int, int, int, CString>{
             {12.34, 0, 0, 3, 1, "  12.3"},
             {100, 0, 1, 3, 1, "100.0 "},
             {5.9, 0, 0, 4, 0, "   5"},  // cut, not rounded
             {-0.5, 0, 1, 3, -1, "0  "},
             {3e9, 0, 0, 3, 0, "3000000000"},
             {7, 0, 0, -3, 0, "7  "},
             {0.25, 0, 0, 1, 1, " 0.3"},  // a tie goes away from zero
             {NAN, 0, 0, 3, 0, "nan"},
             {1, 0, 2, 3, 1, ""},
             {90061, 1, 2, 0, 0, "1 1:01:01"},
             {1, 2, 0, 3, 1, ""},
             {1, 0, 0, kMost, 0, CString(' ', 511) + "1"},
             {1, 0, 1, kMost, kMost, "1." + CString('0', 512) + CString(' ', 512)},
         })
        EXPECT_EQ(CAxisStyle::GetFormattedValue(value, type, position, digit, decimal), expected) << value;
}

TEST(AxisStyle, EndsAreWrittenByTheStyle) {
    CAxisStyle axis;
    EXPECT_EQ(axis.GetFormattedMinValue(-1), "   0.0");
    EXPECT_EQ(axis.GetFormattedMaxValue(1), "100.0 ");
    axis.SetLabelType(2);
    axis.SetMinStr(" low");
    axis.SetMaxStr("high ");
    EXPECT_EQ(Line({axis.GetFormattedMinValue(0), axis.GetFormattedMaxValue(2)}), " low high ");
    axis.SetMinRange(50);
    axis.SetMaxRange(10);
    EXPECT_EQ(axis.GetAbsRange(), 40);
}
