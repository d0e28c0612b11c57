#include "qellib10/platform/text/string_table.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "../support/code_page_scope.h"
#include "../support/language_scope.h"
#include "qellib10/resource/string_ids.h"

TEST(StringTable, HasTheLibrarysTextsInBothLanguagesAndEveryPage) {
    struct Case {
        UINT id, page;
        const char *english, *japanese;
    };
    for (const Case& c : {Case{2048, 932, "%", "%"}, Case{2053, 932, "\x83\xCAg/L", "\x83\xCAg/L"},
                          Case{2053, 1252, "\xB5g/L", "\xB5g/L"},
                          Case{2075, 932,
                               "\x81\x8B"
                               "C",
                               "\x81\x8E"},
                          Case{2075, 65001, "\u00B0C", "\u2103"}, Case{2078, 932, "h", "\x8E\x9E\x8A\xD4"},
                          Case{2079, 932, "times", "\x89\xF1"}, Case{27010, 932, "None", "\x82\xC8\x82\xB5"},
                          Case{28001, 932, "\r\n", "\r\n"}, Case{28002, 932, ",", ","}, Case{28003, 932, "\"", "\""}}) {
        SCOPED_TRACE(c.id);
        const CodePageScope page(c.page);
        for (const auto language : {qel::Language::English, qel::Language::Japanese}) {
            const LanguageScope scope(language);
            CString text("before");
            EXPECT_NE(text.LoadString(c.id), 0);
            EXPECT_EQ(text, language == qel::Language::Japanese ? c.japanese : c.english);
        }
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
        {60001, "Report", "\u5831\u544A"}, {60002, "Only", nullptr}, {60003, "", nullptr}, {60004, "old", "old"}};
    static constexpr qel::StringTableEntry kNewer[] = {{60004, "new", "new"}};
    qel::RegisterStringTable(kOwn);
    qel::RegisterStringTable(kNewer);
    const LanguageScope japanese(qel::Language::Japanese);
    const CodePageScope page(932);
    EXPECT_EQ(qel::LookUpString(60001), CString("\x95\xF1\x8D\x90"));
    EXPECT_EQ(qel::LookUpString(60002), CString("Only"));
    EXPECT_EQ(qel::LookUpString(60003), std::nullopt);
    EXPECT_EQ(qel::LookUpString(60004), CString("new"));
    EXPECT_NE(qel::LookUpString(qel::kCsvDelimiterId), std::nullopt);
}

TEST(StringTableDeathTest, TakesLanguageAndCodePageFromTheEnvironment) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the program runs afresh, so it reads the environment again
    struct Case {
        const char *language, *page;
        qel::Language wantedLanguage;
        UINT wantedPage;
    };
    for (const Case& c :
         {Case{"ja", "1252", qel::Language::Japanese, 1252}, Case{"fr", "437", qel::Language::English, 932}}) {
        setenv("QELLIB10_LANGUAGE", c.language, 1);
        setenv("QELLIB10_CODEPAGE", c.page, 1);
        EXPECT_EXIT(std::exit(qel::TableLanguage() == c.wantedLanguage && qel::CodePage() == c.wantedPage ? 0 : 1),
                    testing::ExitedWithCode(0), "");
    }
    unsetenv("QELLIB10_LANGUAGE");
    unsetenv("QELLIB10_CODEPAGE");
}
