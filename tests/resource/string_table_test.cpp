#include "qellib10/platform/text/string_table.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>
#include <vector>

#include "../support/code_page_scope.h"

TEST(StringTable, HasTheLibrarysTextsInBothLanguagesAndEveryPage) {
    // clang-format off
    const std::vector<std::tuple<UINT, UINT, const char*, const char*>> cases = {
        {2053, 932, "\x83\xCAg/L", "\x83\xCAg/L"}, {2053, 1252, "\xB5g/L", "\xB5g/L"}, {2076, 932, "s", "\x95\x62"},
        {2075, 65001, "\u00B0C", "\u2103"}, {27010, 932, "None", "\x82\xC8\x82\xB5"}, {28001, 932, "\r\n", "\r\n"},
        {28002, 932, ",", ","}, {28003, 932, "\"", "\""}};
    // clang-format on
    for (const auto& [id, page, english, japanese] : cases) {
        const CodePageScope scope(page);
        qel::SetTableLanguage(qel::Language::Japanese);
        EXPECT_EQ(qel::LookUpString(id), CString(japanese));
        qel::SetTableLanguage(qel::Language::English);
        EXPECT_EQ(qel::LookUpString(id), CString(english));
    }
}

TEST(StringTable, AnswersTheEmptyTextForWhatIsMissing) {
    for (const UINT id : {0U, 2047U, 2080U, 28004U, 0xFFFFFFFFU}) {
        CString text("before");
        EXPECT_EQ(text.LoadString(id), 0);
        EXPECT_EQ(text, "");
    }
}

TEST(StringTable, AnApplicationsTextsWinAndMayHaveOneLanguage) {
    static constexpr qel::StringTableEntry kOwn[] = {
        {60001, "Report", "?"}, {60002, nullptr, "Only"}, {60003, "", nullptr}, {60004, "old", "old"}};
    static constexpr qel::StringTableEntry kNewer[] = {{60004, "new", "new"}};
    qel::RegisterStringTable(kOwn);
    qel::RegisterStringTable(kNewer);
    EXPECT_EQ(qel::LookUpString(60001), CString("Report"));
    EXPECT_EQ(qel::LookUpString(60002), CString("Only"));
    EXPECT_EQ(qel::LookUpString(60003), std::nullopt);
    EXPECT_EQ(qel::LookUpString(60004), CString("new"));
}

TEST(StringTableDeathTest, TakesLanguageAndCodePageFromTheEnvironment) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the program runs afresh, so it reads the environment again
    const std::vector<std::tuple<const char*, const char*, int>> cases = {{"ja", "1252", 1252 + 1}, {"fr", "437", 932}};
    for (const auto& [language, page, expected] : cases) {
        setenv("QELLIB10_LANGUAGE", language, 1);
        setenv("QELLIB10_CODEPAGE", page, 1);
        const auto found = [] {
            return static_cast<int>(qel::CodePage()) + (qel::TableLanguage() == qel::Language::Japanese);
        };
        EXPECT_EXIT(std::exit(found() == expected ? 0 : 1), testing::ExitedWithCode(0), "") << language;
    }
    unsetenv("QELLIB10_LANGUAGE");
    unsetenv("QELLIB10_CODEPAGE");
}
