#include "qellib10/file/spreadsheet_text.h"

#include "../support/test.h"

TEST(SpreadsheetText, StartsNoFormula) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"=1", "'=1"},
             {"+1", "'+1"},
             {"-1", "'-1"},
             {"@SUM(A1)", "'@SUM(A1)"},
             {"\t=1", "'\t=1"},
             {"\r=1", "'\r=1"},
             {"'a", "''a"},  // so that the mark can be taken off again
             {"", ""},
             {"a=1", "a=1"},
             {" =1", " =1"},
         }) {
        SCOPED_TRACE(expected);
        EXPECT_EQ(qel::SpreadsheetText(text), expected);
    }
}
