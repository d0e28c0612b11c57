#include "qellib10/platform/text/multibyte.h"

#include <gtest/gtest.h>

#include "../support/code_page_scope.h"

using namespace std::string_view_literals;

namespace {

constexpr auto npos = std::string_view::npos;

}  // namespace

TEST(Multibyte, FindsWholeCharactersOnly) {
    const CodePageScope japanese(932);
    struct Case {
        std::string_view text, wanted;
        std::size_t from, at;
    };
    for (const Case& c : {Case{"\x83\x5C\\\x95\x5C", "\\", 0, 2},  // 5C is a backslash
                          Case{"\x83\x5C\\\x95\x5C", "\\", 3, npos}, Case{"\x83\x5C\\", "\x5C\x5C", 0, npos},
                          Case{"\x81\x83\x5C", "\x83\x5C", 0, npos}, Case{"\x81\x83\x83\x5C", "\x83\x5C", 0, 2},
                          Case{"\x83\x5C\x83", "\x83", 0, npos},  // half a character
                          Case{"\xB1\x83\xB1\xB1", "\xB1", 1, 3}, Case{"ab", "", 2, 2}, Case{"ab", "", 3, npos},
                          Case{"ab", "b", 7, npos}}) {
        SCOPED_TRACE(testing::PrintToString(c.text) + testing::PrintToString(c.wanted));
        EXPECT_EQ(qel::FindText(c.text, c.wanted, c.from), c.at);
        if (c.wanted.size() == 1) {
            EXPECT_EQ(qel::FindCharacter(c.text, c.wanted[0], c.from), c.at);
        }
    }
    EXPECT_EQ(qel::FindLastCharacter("\\\x83\x5C\\\x95\x5C", '\\'), 3U);
    EXPECT_EQ(qel::FindLastCharacter("1.2.\x81\x2E", '.'), 5U);  // no trail byte, whatever stands before it
    const CodePageScope latin1(1252);
    EXPECT_EQ(qel::FindCharacter("\x83\x5C", '\\'), 1U);
}

TEST(Multibyte, OrdersByCharacters) {
    const CodePageScope japanese(932);
    struct Case {
        std::string_view a, b;
        int order, foldedOrder;
    };
    for (const Case& c : {Case{"\xB1", "\x82\x60", -1, -1},  // half-width katakana before every double-byte character
                          Case{"ab", "abc", -1, -1}, Case{"", "", 0, 0}, Case{"abC", "ABc", 1, 0},
                          Case{"\x82\x60", "\x82\x81", -1, 0}, Case{"_", "B", 1, -1},  // folding is to lower case
                          Case{"\x83\x9F", "\x83\xBF", -1, -1},                        // Greek stays as it is
                          Case{"\x83\x41", "\x83\x61", -1, -1},                        // a trail byte is no letter
                          Case{"a\x83", "a", 0, 0}}) {                                 // a lone lead byte ends its text
        SCOPED_TRACE(testing::PrintToString(c.a) + testing::PrintToString(c.b));
        EXPECT_EQ(qel::CompareText(c.a, c.b), c.order);
        EXPECT_EQ(qel::CompareText(c.b, c.a), -c.order);
        EXPECT_EQ(qel::CompareTextFolded(c.a, c.b), c.foldedOrder);
        EXPECT_EQ(qel::CompareTextFolded(c.b, c.a), -c.foldedOrder);
    }
    const CodePageScope latin1(1252);
    EXPECT_EQ(qel::CompareText("\xB1", "\x82\x60"), 1);
}

TEST(Multibyte, NamesDifferByMoreThanCase) {
    const CodePageScope japanese(932);
    struct Case {
        std::string_view a, b;
        bool same;
    };
    for (const Case& c :
         {Case{"abC_1", "ABc_1", true}, Case{"\x82\x60", "\x82\x81", true},
          Case{"\x83\x9F\x83\xB6", "\x83\xBF\x83\xD6", true},
          Case{"\x84\x4E\x84\x4F\x84\x60", "\x84\x7E\x84\x80\x84\x91", true}, Case{"A", "\x82\x60", false},
          Case{"\xB1", "\x83\x41", false}, Case{"\x82\xA0", "\x83\x41", false}, Case{"\x83\x41", "\x83\x61", false},
          Case{"a", "ab", false}, Case{"\x83\x41", "xA", false}, Case{"b\x83", "B\x83", true}}) {
        SCOPED_TRACE(testing::PrintToString(c.a) + testing::PrintToString(c.b));
        EXPECT_EQ(qel::SameName(c.a, c.b), c.same);
        EXPECT_EQ(qel::FoldName(c.a) == qel::FoldName(c.b), c.same);
    }
}

TEST(Multibyte, CutsBetweenCharacters) {
    const CodePageScope japanese(932);
    struct Case {
        const char* source;
        std::size_t bytes;
        std::string_view copied;
    };
    for (const Case& c :
         {Case{"\x88\x9F\x88\xA0", 3, "\x88\x9F\0"sv}, Case{"\x88\x9F\x88\xA0", 5, "\x88\x9F\x88\xA0\0"sv},
          Case{"abc", 2, "ab"sv}, Case{"abc", 0, ""sv}, Case{"a\x88", 4, "a\0\0\0"sv},  // the second half is missing
          Case{"\x88\x88\x88", 3, "\x88\x88\0"sv}}) {
        char target[6];
        std::fill(std::begin(target), std::end(target), '#');
        qel::CopyBounded(target, c.source, c.bytes);
        EXPECT_EQ(std::string_view(target, c.bytes), c.copied);
        EXPECT_EQ(target[c.bytes], '#');
    }
    EXPECT_EQ(qel::LeftWhole("x\x88\x9F\x88\xA0", 4), "x\x88\x9F");
    EXPECT_EQ(qel::LeftWhole("x\x88\x9F", 9), "x\x88\x9F");
    const CodePageScope latin1(1252);
    EXPECT_EQ(qel::LeftWhole("x\x88\x9F", 2), "x\x88");
}
