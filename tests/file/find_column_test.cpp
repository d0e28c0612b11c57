#include "qellib10/file/find_column.h"

#include "../support/test.h"

TEST(FindColumn, TakesNumbersAsTheyAreAndNamesAsTheyLook) {
    constexpr std::size_t kLargest = std::string_view::npos;
    const std::vector<std::string> row = {"No.", "E",         "e", " Vol \u03BCL\t", "25",
                                          "no.", "T\u2212T0", "",  "\u00C9",         "pH\u00A0"};
    for (const auto& [column, place] : Cases<const char*, std::optional<std::size_t>>{
             {"1", 0},
             {" 025\t", 24},  // a number, also where it is a name and the row has no such field
             {"0", kLargest},
             {"18446744073709551616", kLargest - 1},
             {"-1", std::nullopt},
             {"1.", std::nullopt},
             {"no.", 5},  // exactly this one
             {"NO.", 0},
             {"e", 2},
             {" vol\u00A0\u00B5l ", 3},
             {"t-t0", 6},
             {"\u00E9", std::nullopt},  // of other letters the case counts
             {"", 7},
             {"ph", 9},
             {"\u202FpH", 9},
             {"Vol", std::nullopt},
         }) {
        EXPECT_EQ(qel::FindColumn(row, column), place) << column;
        const std::vector<std::string_view> fields(row.begin(), row.end());
        EXPECT_EQ(qel::FindColumn(fields, column), place) << column;
    }
}
