#include "qellib10/platform/variant/ole_variant.h"

#include <cmath>
#include <limits>

#include "../support/test.h"

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(OleVariant, ConvertsAsDatabasesWriteTheirValues) {
    COleVariant null;
    null.vt = VT_NULL;
    COleVariant unknown;
    unknown.vt = 0x2000;
    for (const auto& [value, text, integer, number] : Cases<COleVariant, const char*, int, double>{
             {{}, "", 0, 0},
             {null, "", 0, 0},
             {unknown, "", 0, 0},
             {BYTE{200}, "200", 200, 200},
             {short{-7}, "-7", -7, -7},
             {COleVariant(5, VT_BOOL), "-1", -1, -1},
             {LONG{1 << 30}, "1073741824", 1 << 30, 1 << 30},
             {-2147483648L, "-2147483648", -2147483647 - 1, -2147483648.0},
             {5000000000L, "5000000000", 0, 5e9},  // no LONG
             {0.1F, "0.1", 0, 0.1F},
             {1e15, "1E+15", 0, 1e15},
             {1e-5, "1E-05", 0, 1e-5},
             {3.5, "3.5", 4, 3.5},
             {-2.5, "-2.5", -2, -2.5},
             {kNaN, "nan", 0, kNaN},
             {CY{-125000}, "-12.5", -12, -12.5},
             {CY{1}, "0.0001", 0, 0.0001},
             {COleDateTime(2001, 1, 2, 3, 4, 5), "2001/01/02 3:04:05", 36893, 36893 + 11045.0 / 86400},
             {COleDateTime(2001, 1, 2, 0, 0, 0), "2001/01/02", 36893, 36893},
             {COleDateTime(0.5), "12:00:00", 0, 0.5},
             {COleDateTime(0.0), "0:00:00", 0, 0},
             {COleDateTime(1e9), "", 1000000000, 1e9},
             {" 12.5 ", " 12.5 ", 12, 12.5},
             {"12x", "12x", 0, 0},
         }) {
        EXPECT_STREQ(qel::VariantText(value), text);
        EXPECT_EQ(qel::VariantInteger(value), integer) << text;
        EXPECT_EQ(qel::VariantNumber(value) == number, !std::isnan(number)) << text;
    }
    EXPECT_EQ(COleVariant(-2147483648L).vt, VT_I4);
    EXPECT_EQ(COleVariant(2147483648L).vt, VT_R8);
}
