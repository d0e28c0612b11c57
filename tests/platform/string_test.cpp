#include "qellib10/platform/text/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "qellib10/platform/text/string_array.h"

TEST(String, SearchesNeverMatchATrailByte) {
    const CString text("\x83\x5C\\\x95\x5C");  // the trail bytes are backslashes too
    EXPECT_EQ(text.Find('\\'), 2);
    EXPECT_EQ(text.ReverseFind('\\'), 2);
    EXPECT_EQ(text.Find("\\", 3), -1);
    EXPECT_EQ(text.FindOneOf("x\\"), 2);
    EXPECT_EQ(text.FindOneOf("\x5C\x95\x5C"), 2);
    CString changed = text;
    EXPECT_EQ(changed.Replace('\\', '/'), 1);
    EXPECT_EQ(changed, "\x83\x5C/\x95\x5C");
}

TEST(String, SearchesStartInsideTheText) {
    const CString text("a.b");
    struct Case {
        int start, character, substring, empty;
    };
    for (const Case& c : {Case{0, 1, 1, 0}, Case{2, -1, -1, 2}, Case{3, -1, -1, 3}, Case{4, -1, -1, -1},
                          Case{-1, -1, -1, -1}, Case{INT_MAX, -1, -1, -1}}) {
        SCOPED_TRACE(c.start);
        EXPECT_EQ(text.Find('.', c.start), c.character);
        EXPECT_EQ(text.Find(".b", c.start), c.substring);
        EXPECT_EQ(text.Find("", c.start), c.empty);
    }
}

TEST(String, CutsWithinItsBounds) {
    const CString text("abc");
    EXPECT_EQ(text.Left(-1), "");
    EXPECT_EQ(text.Left(9), "abc");
    EXPECT_EQ(text.Right(2), "bc");
    EXPECT_EQ(text.Right(INT_MIN), "");
    EXPECT_EQ(text.Mid(1, INT_MAX), "bc");
    EXPECT_EQ(text.Mid(-5, 1), "a");
    EXPECT_EQ(text.Mid(3), "");
    EXPECT_EQ(text.Mid(4), "");
    EXPECT_EQ(text.GetAt(3), '\0');
    EXPECT_EQ(text[-1], '\0');
}

TEST(String, ReplacesFromLeftToRight) {
    struct Case {
        const char *text, *old, *replacement;
        int count;
        const char* result;
    };
    for (const Case& c :
         {Case{"aaa", "aa", "aaa", 1, "aaaa"}, Case{"aXbX", "X", nullptr, 2, "ab"}, Case{"a", "", "b", 0, "a"},
          Case{"\x83\x5C\x5C", "\x5C", "//", 1, "\x83\x5C//"}, Case{"a", nullptr, "b", 0, "a"}}) {
        CString text(c.text);
        EXPECT_EQ(text.Replace(c.old, c.replacement), c.count);
        EXPECT_EQ(text, c.result);
    }
}

TEST(String, TrimsCharacters) {
    struct Case {
        const char *text, *set, *left, *right;
    };
    for (const Case& c : {Case{" \t\v\f\r\nx \t", nullptr, "x \t", " \t\v\f\r\nx"},
                          Case{"\x81\x40 x \x81\x40", nullptr, "\x81\x40 x \x81\x40", "\x81\x40 x \x81\x40"},
                          Case{"\x83 ", nullptr, "\x83 ", "\x83"},  // a blank is a blank, also behind half a character
                          Case{"  ", nullptr, "", ""}, Case{"\x83\x5C\\\\", "\\", "\x83\x5C\\\\", "\x83\x5C"},
                          Case{"\x83\x5C-x-\x83\x5C", "-\x83\x5C", "x-\x83\x5C", "\x83\x5C-x"},
                          Case{"x\x83", "\x83\x5C", "x\x83", "x\x83"}}) {
        SCOPED_TRACE(c.text);
        CString left(c.text);
        CString right(c.text);
        c.set != nullptr ? left.TrimLeft(c.set) : left.TrimLeft();
        c.set != nullptr ? right.TrimRight(c.set) : right.TrimRight();
        EXPECT_EQ(left, c.left);
        EXPECT_EQ(right, c.right);
    }
}

TEST(String, FormatsWithoutTheLocaleAndFromItsOwnText) {
    CString text("1.50");
    text.Format("%s%c %.2f %04X", static_cast<const char*>(text), 'x', 2.5, 255);
    EXPECT_EQ(text, "1.50x 2.50 00FF");
    for (const int length : {255, 256, 700}) {  // around the first buffer
        text.Format("%*d", length, 7);
        EXPECT_EQ(text, CString(' ', length - 1) + '7');
    }
}

TEST(String, TakesPartsOfItself) {
    CString text("abcdef");
    text = static_cast<const char*>(text) + 2;
    EXPECT_EQ(text, "cdef");
    for (int round = 0; round < 4; ++round) text += static_cast<const char*>(text) + 2;  // beyond its room
    EXPECT_EQ(text.GetLength(), 2 + (1 << 4) * 2);
    EXPECT_EQ(text.Replace(text, text), 1);
    text.TrimLeft(text);
    EXPECT_EQ(text, "");
}

TEST(String, ComparesByCharactersAndEqualsByBytes) {
    const CString kana("\xB1");
    EXPECT_TRUE(kana < "\x82\x60");
    EXPECT_TRUE("\x82\x60" > kana);
    EXPECT_TRUE(kana <= kana);
    EXPECT_EQ(CString("Ab").CompareNoCase("aB"), 0);
    EXPECT_NE(CString("a\0b", 3), CString("a"));
    EXPECT_EQ(CString("a\0b", 3).Compare("a"), 0);
    EXPECT_TRUE(CString() == static_cast<const char*>(nullptr));
}

TEST(String, LendsItsBuffer) {
    CString text("abc");
    char* const buffer = text.GetBuffer(5);
    EXPECT_STREQ(buffer, "abc");
    std::fill(buffer, buffer + 6, 'x');  // 5 and the place of the terminator
    text.ReleaseBuffer();
    EXPECT_EQ(text, "xxxxxx");
    text.GetBuffer(0)[2] = '\0';
    text.ReleaseBuffer();
    EXPECT_EQ(text, "xx");
    text.GetBuffer(-1);
    text.ReleaseBuffer(1);
    EXPECT_EQ(text, "x");
}

TEST(StringArray, KeepsTextsAsTheyAre) {
    CStringArray texts;
    EXPECT_EQ(texts.Add("a"), 0);
    EXPECT_EQ(texts.Add(CString("b\0c", 3)), 1);
    for (int i = 2; i < 9; ++i) texts.Add(texts[1]);  // of its own, while it grows
    EXPECT_EQ(texts[8].GetLength(), 3);
    texts.SetAt(0, texts[1]);
    texts.SetAt(9, "beyond");
    texts.RemoveAt(-1);
    EXPECT_EQ(texts.GetSize(), 9);
    texts.RemoveAt(8);
    EXPECT_EQ(texts.GetSize(), 8);
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_EQ(texts.GetAt(8), "");
}
