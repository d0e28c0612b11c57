#include "qellib10/platform/text/string.h"

#include <algorithm>
#include <climits>
#include <ranges>
#include <unordered_set>

#include "../support/test.h"
#include "qellib10/platform/text/string_array.h"

TEST(String, SearchesAndCutsWithinItsBounds) {
    const CString text("a.b");
    for (const int outside : {4, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(Line({text.Find('.', outside), text.Find("", outside)}), "-1 -1") << outside;
    EXPECT_EQ(Line({text.Find('.', 1), text.Find("", 3)}), "1 3");
    EXPECT_EQ(text.GetAt(3), '\0');
    EXPECT_EQ(text[-1], '\0');
    EXPECT_EQ(Line({text.Right(2), text.Mid(1, INT_MAX), text.Mid(-5, 1)}), ".b .b a");
    EXPECT_EQ(Line({text.Left(-1), text.Right(INT_MIN), text.Mid(4)}), "  ");
}

TEST(String, ReplacesFromLeftToRightAndNeverATrailByte) {
    CString path("\x83\x5C\\\x95\x5C");  // the trail bytes are backslashes too
    EXPECT_EQ(Line({path.ReverseFind('\\'), path.FindOneOf("x\\")}), "2 2");
    EXPECT_EQ(path.Replace('\\', '/'), 1);
    EXPECT_EQ(path, "\x83\x5C/\x95\x5C");
    for (auto [text, old, replacement, count, result] : Cases<CString, const char*, const char*, int, const char*>{
             {"aaa", "aa", "aaa", 1, "aaaa"},
             {"aXbX", "X", nullptr, 2, "ab"},
             {"a", nullptr, "b", 0, "a"},
             {"\x83\x5C\x5C", "\x5C", "//", 1, "\x83\x5C//"},
         }) {
        EXPECT_EQ(text.Replace(old, replacement), count);
        EXPECT_EQ(text, result);
    }
}

TEST(String, TrimsCharacters) {
    for (auto [text, set, trimmed] : Cases<CString, const char*, const char*>{
             {" \t\v\f\r\nx \t", nullptr, "x"},
             {" \x81\x40 x\x83 ", nullptr, "\x81\x40 x\x83"},  // a blank is a blank, also after half a character
             {"  ", nullptr, ""},
             {"\\\x83\x5C\\\\", "\\", "\x83\x5C"},
             {"\x83\x5C-x-\x83\x5C", "-\x83\x5C", "x"},
             {"x\x83", "\x83\x5C", "x\x83"},
         }) {
        set != nullptr ? text.TrimLeft(set) : text.TrimLeft();
        set != nullptr ? text.TrimRight(set) : text.TrimRight();
        EXPECT_EQ(text, trimmed);
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

TEST(String, ComparesWithStandardTextsAndJoinsThem) {
    const std::string ab("a\0b", 3);
    const std::string_view a("a");
    CString text;
    text = ab;
    EXPECT_EQ(Line({text == ab, ab == text, text != a, a < CString("b")}), "1 1 1 1");
    EXPECT_EQ(text + a, std::string("a\0ba", 4));
    EXPECT_EQ(a + text, std::string("aa\0b", 4));
    EXPECT_EQ(std::string("x") + CString("y") + "z", "xyz");
    text += text.View().substr(2);
    EXPECT_EQ(text, std::string("a\0bb", 4));
    text = text.View().substr(2);
    EXPECT_EQ(text, "bb");
    EXPECT_TRUE(CString("\xB1") < std::string("\x82\x60")) << "by characters, as between two of its own";
}

TEST(String, IsARangeAndAKey) {
    static_assert(std::ranges::contiguous_range<CString> && std::ranges::sized_range<CString>);
    const CString text("a\0b", 3);
    EXPECT_EQ(std::ranges::count(text, '\0'), 1);
    const std::unordered_set<CString> keys = {text, "a"};
    EXPECT_EQ(keys.size(), 2u);
    EXPECT_TRUE(keys.contains(std::string("a\0b", 3) + CString()));
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
    EXPECT_TRUE(CString("\xB1") < "\x82\x60");
    EXPECT_TRUE("\x82\x60" > CString("\xB1"));
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
}

TEST(StringArray, KeepsTextsAsTheyAre) {
    CStringArray texts;
    EXPECT_EQ(texts.Add(CString("b\0c", 3)), 0);
    for (int i = 1; i < 9; ++i) texts.Add(texts[0]);  // of its own, while it grows
    texts.SetAt(9, "beyond");
    texts.RemoveAt(-1);
    texts.RemoveAt(9);
    EXPECT_EQ(texts.GetSize(), 9);
    EXPECT_EQ(texts[8].GetLength(), 3);
    EXPECT_EQ(texts[9], "");
}
