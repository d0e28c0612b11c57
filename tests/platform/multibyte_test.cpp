#include "qellib10/platform/text/multibyte.h"

#include "../support/test.h"
#include "qellib10/platform/text/utf8_name.h"

using namespace std::string_view_literals;

TEST(Multibyte, FindsWholeCharactersOnly) {
    const CodePageScope japanese(932);
    constexpr auto npos = std::string_view::npos;
    for (const auto& [text, wanted, from, at] : Cases<std::string_view, std::string_view, std::size_t, std::size_t>{
             {"\x83\x5C\\\x95\x5C", "\\", 0, 2},  // 5C is a backslash
             {"\x81\x83\x83\x5C", "\x83\x5C", 0, 2},
             {"\x83\x5C\x83", "\x83", 0, npos},  // half a character
             {"\x83.x.", ".", 0, 3},             // a lead byte takes whatever follows it
             {"\xB1\x83\xB1\xB1", "\xB1", 1, 3},
             {"ab", "b", 7, npos},
             {"ab", "", 2, 2},
         }) {
        SCOPED_TRACE(testing::PrintToString(text) + testing::PrintToString(wanted));
        EXPECT_EQ(qel::FindText(text, wanted, from), at);
        EXPECT_EQ(wanted.size() == 1 ? qel::FindCharacter(text, wanted[0], from) : at, at);
    }
    EXPECT_EQ(qel::FindLastCharacter("\\\x83\x5C\\\x95\x5C", '\\'), 3U);
    EXPECT_EQ(qel::FindLastCharacter("\x83.\x83.", '.'), npos);
    EXPECT_EQ(qel::FindLastCharacter("a\x83", '\x83'), npos);
    const CodePageScope latin1(1252);
    EXPECT_EQ(qel::FindCharacter("\x83\x5C", '\\'), 1U);
}

TEST(Multibyte, NamesDifferByMoreThanCase) {
    const CodePageScope japanese(932);
    for (const auto& [a, b, same] : Cases<std::string_view, std::string_view, bool>{
             {"abC_1", "ABc_1", true},
             {"\x82\x60\x83\x9F\x83\xB6", "\x82\x81\x83\xBF\x83\xD6", true},
             {"\x84\x4E\x84\x4F\x84\x60", "\x84\x7E\x84\x80\x84\x91", true},
             {"b\x83", "B\x83", true},
             {"\x82\xA0", "\x83\x41", false},
             {"\x83\x41", "\x83\x61", false},
         }) {
        SCOPED_TRACE(testing::PrintToString(a) + testing::PrintToString(b));
        EXPECT_EQ(qel::SameName(a, b), same);
        EXPECT_EQ(qel::FoldName(a) == qel::FoldName(b), same);
    }
}

TEST(Multibyte, NamesInUtf8AreTheSameWhereThoseInTheCodePageAre) {
    const CodePageScope japanese(932);
    for (int lead = 0; lead < 256; ++lead) {
        for (int trail = 0x40; trail < 256; ++trail) {
            const bool isWide = qel::IsLeadByte(static_cast<unsigned char>(lead), 932);
            const std::string name = isWide ? std::string{static_cast<char>(lead), static_cast<char>(trail)}
                                            : std::string{static_cast<char>(lead)};
            EXPECT_EQ(qel::FoldUtf8Name(qel::ToUtf8(name)), qel::ToUtf8(qel::FoldName(name))) << lead << ' ' << trail;
            if (!isWide) break;
        }
    }
    EXPECT_TRUE(qel::SameUtf8Name("\xD0\x81mori", "\xD1\x91MORI"));
    for (const auto& [a, b] :
         Cases<const char*, const char*>{{"mori", "mori "}, {"\xC3", "\xC4"}, {"\xC3\x89", "\xC3\xA9"}})
        EXPECT_FALSE(qel::SameUtf8Name(a, b)) << a;
}
