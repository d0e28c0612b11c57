#include "qellib10/platform/text/string.h"

#include <gtest/gtest.h>

TEST(String, SearchesNeverMatchATrailByte) {
    const CString text("\x83\x5C\\\x95\x5C");  // the trail bytes are backslashes too
    EXPECT_EQ(text.Find('\\'), 2);
    EXPECT_EQ(text.ReverseFind('\\'), 2);
    EXPECT_EQ(text.Find("\\", 3), -1);
    EXPECT_EQ(text.FindOneOf("x\\"), 2);
    CString changed = text;
    EXPECT_EQ(changed.Replace('\\', '/'), 1);
    EXPECT_EQ(changed, "\x83\x5C/\x95\x5C");
}

TEST(String, CutsWithinItsBounds) {
    const CString text("abc");
    EXPECT_EQ(text.Left(-1), "");
    EXPECT_EQ(text.Left(9), "abc");
    EXPECT_EQ(text.Right(2), "bc");
    EXPECT_EQ(text.Mid(1, 0x7FFFFFFF), "bc");
    EXPECT_EQ(text.Mid(-5, 1), "a");
    EXPECT_EQ(text.Mid(4), "");
}
