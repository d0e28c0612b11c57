#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qellib10/platform/text/code_page.h"

#include "qellib10/base/q_variant.h"
#include "qellib10/resource/string_ids.h"
#include "qellib10/tests/support/cases.h"

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
    for (std::size_t n = 0; n < 7; ++n) {
        EXPECT_STREQ(CQVariant::MBLeft(text, static_cast<int>(n)), expected[n]) << n;
        std::string copy(8, 'x');
        CQVariant::strncopy(copy.data(), text, static_cast<int>(n));
        EXPECT_STREQ(copy.c_str(), expected[n]);
        EXPECT_EQ(copy.substr(n), std::string(1, '\0').append(7 - n, 'x'));
    }
    EXPECT_STREQ(CQVariant::MBLeft(text, -1), "");
    CQVariant::strncopy(nullptr, text, 3);
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
    // clang-format off
    const Cases<const char*, const char*, int, int> cases = {  // as they are, and without regard to case
        {"Sample9", "Sample10", -1, -1}, {"Sample", "Sample0", 0, 0}, {"a01", "a1", 0, 0}, {"7", "12", -1, -1},
        {"b1", "a2", 1, 1}, {"A2", "a1", -1, 1}, {"A", "a", -1, 0}, {"", "", 0, 0},
        {"\xB1" "2", "\x83\x41" "1", -1, -1},     // single bytes sort before double ones
        {"\x82\x60" "1", "\x82\x81" "1", -1, 0},  // full-width A and a
        {"\x83\x41" "3", "\x83\x61" "2", -1, -1}};  // the trail bytes are no letters
    // clang-format on
    for (const auto& [a, b, order, foldedOrder] : cases) {
        EXPECT_EQ(CQVariant::StrCmp(a, b), order) << a << " and " << b;
        EXPECT_EQ(CQVariant::StrCmp(b, a), -order) << a << " and " << b;
        EXPECT_EQ(CQVariant::StrCmpi(a, b), foldedOrder) << a << " and " << b;
    }
    EXPECT_STREQ(CQVariant::CutLastValue("a1b23"), "a1b");
}

TEST(QVariantText, VersionsCompareByNumber) {
    // clang-format off
    const Cases<const char*, const char*, int> cases = {
        {"1.2", "1.2.0", 0}, {"1.10", "1.9", 1}, {"1,2", "1.2", 0}, {" 1 . 2", "1.2", 0}, {"", "0.0", 0},
        {"1.x", "1.0", 0}, {"", "0.0.1", -1}, {"2", "1.9.9", 1}};
    // clang-format on
    for (const auto& [a, b, order] : cases) {
        EXPECT_EQ(CQVariant::VersionCmp(a, b), order) << a << " and " << b;
        EXPECT_EQ(CQVariant::VersionCmp(b, a), -order) << a << " and " << b;
    }
}

TEST(QVariantText, QuotesForFilesAndQueries) {
    // clang-format off
    const Cases<const char*, const char*> fields = {
        {"5/2", "\"5/2\""}, {"a\"b", "\"a\"\"b\""}, {"a,b", "\"a,b\""}, {"a*b", "\"a*b\""}, {"a b", "a b"}};
    // clang-format on
    for (const auto& [text, field] : fields) EXPECT_STREQ(CQVariant::STRtoCSV(text), field);
    EXPECT_STREQ(CQVariant::GetDAOSQLQuate("O'x", 0) + CQVariant::GetDAOSQLQuate("", 0), "'O''x'");
    EXPECT_STREQ(CQVariant::EmptyToNull(nullptr) + CQVariant::EmptyToNull("0"), "NULL0");
    EXPECT_STREQ(CQVariant::LoadStringA(1) + CQVariant::LoadStringA(qel::kCsvDelimiterId), ",");
}

TEST(QVariantText, LimitDoesNotCheckTheFallback) {
    int values[] = {5, -5, 2};
    for (int& value : values) CQVariant::Limit(value, 0, 3, 10);
    EXPECT_EQ(values[0] * 10000 + values[1] * 100 + values[2], 101002);
}
