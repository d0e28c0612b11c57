#include <gtest/gtest.h>

#include <vector>

#include "qellib10/platform/text/code_page.h"

#include "qellib10/base/q_variant.h"

// Double-byte texts whose trail bytes are letters, digits' neighbours or separators: 83 5C, 95 5C (a backslash), 83 41
// (A), 83 7C (a bar).

TEST(QVariantText, LeadBytesAreThoseOfTheJapanesePage) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool isLead = (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
        EXPECT_EQ(CQVariant::Check2Byte1(static_cast<char>(byte)), isLead ? -1 : 0) << byte;
    }
    ASSERT_TRUE(qel::SetCodePage(1252));
    EXPECT_EQ(CQVariant::Check2Byte1('\x83'), 0);
    ASSERT_TRUE(qel::SetCodePage(932));
}

TEST(QVariantText, CutsBetweenCharacters) {
    const char* const text = "a\x83\x5C\x95\x5C";
    const char* const expected[] = {"", "a", "a", "a\x83\x5C", "a\x83\x5C", text, text};
    for (int n = 0; n < 7; ++n) EXPECT_STREQ(CQVariant::MBLeft(text, n), expected[n]) << n;
    EXPECT_STREQ(CQVariant::MBLeft(text, -1), "");

    for (int n = 0; n < 7; ++n) {
        char copy[8];
        std::fill(copy, copy + 8, 'x');
        CQVariant::strncopy(copy, text, n);
        EXPECT_STREQ(copy, expected[n]);
        EXPECT_EQ(copy[n], '\0');
        EXPECT_EQ(copy[n + 1 < 8 ? n + 1 : 7], 'x') << "nothing behind n + 1 bytes";
    }
}

TEST(QVariantText, SplitWalksAList) {
    CString list("a,\x83\x7C,,b");
    std::vector<CString> parts;
    for (int i = 0; i < 5; ++i) parts.push_back(CQVariant::Split(list, ','));
    EXPECT_EQ(parts, (std::vector<CString>{"a", "\x83\x7C", "", "b", ""}));
    CString bars("\x83\x7C|x");
    EXPECT_STREQ(CQVariant::Split(bars, '|'), "\x83\x7C");
    CString blanks(" \t\x81\x40x\r\n");
    CQVariant::Trim(blanks);
    EXPECT_STREQ(blanks, "\x81\x40x") << "the full-width blank stays";
}

TEST(QVariantText, NamesWithNumbersSortByTheNumber) {
    struct Case {
        const char* a;
        const char* b;
        int order;
        int foldedOrder;
    };
    for (const Case& c : {Case{"Sample9", "Sample10", -1, -1}, Case{"Sample", "Sample0", 0, 0}, Case{"a01", "a1", 0, 0},
                          Case{"b1", "a2", 1, 1}, Case{"A2", "a1", -1, 1}, Case{"A", "a", -1, 0},
                          Case{"\xB1"
                               "2",
                               "\x83\x41"
                               "1",
                               -1, -1},  // single bytes sort before double ones
                          Case{"\x82\x60"
                               "1",
                               "\x82\x81"
                               "1",
                               -1, 0},  // full-width A and a
                          Case{"\x83\x41"
                               "3",
                               "\x83\x61"
                               "2",
                               -1, -1},  // the trail bytes are no letters
                          Case{"", "", 0, 0}, Case{"7", "12", -1, -1}}) {
        SCOPED_TRACE(testing::Message() << c.a << " and " << c.b);
        EXPECT_EQ(CQVariant::StrCmp(c.a, c.b), c.order);
        EXPECT_EQ(CQVariant::StrCmp(c.b, c.a), -c.order);
        EXPECT_EQ(CQVariant::StrCmpi(c.a, c.b), c.foldedOrder);
    }
    EXPECT_STREQ(CQVariant::CutLastValue("a1b23"), "a1b");
    EXPECT_STREQ(CQVariant::CutLastValue("123"), "");
}

TEST(QVariantText, VersionsCompareByNumber) {
    struct Case {
        const char* a;
        const char* b;
        int order;
    };
    for (const Case& c :
         {Case{"1.2", "1.2.0", 0}, Case{"1.10", "1.9", 1}, Case{"1,2", "1.2", 0}, Case{" 1 . 2", "1.2", 0},
          Case{"", "0.0", 0}, Case{"1.x", "1.0", 0}, Case{"", "0.0.1", -1}, Case{"2", "1.9.9", 1}}) {
        SCOPED_TRACE(testing::Message() << c.a << " and " << c.b);
        EXPECT_EQ(CQVariant::VersionCmp(c.a, c.b), c.order);
        EXPECT_EQ(CQVariant::VersionCmp(c.b, c.a), -c.order);
    }
}

TEST(QVariantText, QuotesForFilesAndQueries) {
    EXPECT_STREQ(CQVariant::STRtoCSV("5/2"), "\"5/2\"");
    EXPECT_STREQ(CQVariant::STRtoCSV("a\"b"), "\"a\"\"b\"");
    EXPECT_STREQ(CQVariant::STRtoCSV("a b"), "a b");
    EXPECT_STREQ(CQVariant::GetDAOSQLQuate("O'x", 0), "'O''x'");
    EXPECT_STREQ(CQVariant::GetDAOSQLQuate("", 0), "");
    EXPECT_STREQ(CQVariant::EmptyToNull(nullptr), "NULL");
    EXPECT_STREQ(CQVariant::EmptyToNull("0"), "0");
    EXPECT_STREQ(CQVariant::LoadStringA(1), "");
}

TEST(QVariantText, LimitDoesNotCheckTheFallback) {
    struct Case {
        int value, low, high, fallback, expected;
    };
    for (const Case& c : {Case{5, 0, 3, 10, 10}, Case{-5, 0, 3, 10, 10}, Case{2, 0, 3, 10, 2}, Case{4, 0, 3, -1, -1}}) {
        int value = c.value;
        CQVariant::Limit(value, c.low, c.high, c.fallback);
        EXPECT_EQ(value, c.expected);
    }
}
