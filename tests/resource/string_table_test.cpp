#include "qellib10/platform/text/string_table.h"

#include <climits>
#include <cstdlib>
#include <iostream>

#include "../support/test.h"
#include "qellib10/resource/qel_resource.h"

TEST(StringTable, HasTheLibrarysTextsInBothLanguagesAndEveryPage) {
    for (const auto& [id, page, english, japanese] : Cases<UINT, UINT, const char*, const char*>{
             {2053, 932, "\x83\xCAg/L", "\x83\xCAg/L"},
             {2053, 1252, "\xB5g/L", "\xB5g/L"},
             {2076, 932, "s", "\x95\x62"},
             {2075, 65001, "\u00B0C", "\u2103"},
             {27010, 932, "None", "\x82\xC8\x82\xB5"},
             {28001, 932, "\r\n", "\r\n"},
             {28002, 932, ",", ","},
             {28003, 932, "\"", "\""},
         }) {
        const CodePageScope scope(page);
        qel::SetTableLanguage(qel::Language::Japanese);
        EXPECT_EQ(qel::LookUpString(id), CString(japanese));
        qel::SetTableLanguage(qel::Language::English);
        EXPECT_EQ(qel::LookUpString(id), CString(english));
    }
    for (const UINT id : {0U, 2047U, 2080U, 28004U, 0xFFFFFFFFU}) {
        CString text("before");
        EXPECT_EQ(Line({text.LoadString(id), text, CQELResource::GetUnitText(id)}), "0  ") << id;
    }
}

TEST(StringTable, AnApplicationsTextsWinAndMayHaveOneLanguage) {
    static constexpr qel::StringTableEntry kOwn[] = {
        {60001, "Report", "?"},
        {60002, nullptr, "Only"},
        {60003, "", nullptr},
        {60004, "old", "old"},
    };
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
    for (const auto& [language, page, found] : Cases<const char*, const char*, const char*>{
             {"ja", "1252", "1 1252"},
             {"fr", "437", "0 932"},
         }) {
        const EnvironmentScope itsLanguage("QELLIB10_LANGUAGE", language), itsPage("QELLIB10_CODEPAGE", page);
        const auto show = [] {
            std::cerr << Line({qel::TableLanguage() == qel::Language::Japanese, qel::CodePage()});
            std::exit(0);
        };
        EXPECT_EXIT(show(), testing::ExitedWithCode(0), found) << language;
    }
}

TEST(QelResource, UnitsAreFoundByTheirTextsAndModelsByTheirIndex) {
    for (const auto language : {qel::Language::Japanese, qel::Language::English}) {
        qel::SetTableLanguage(language);
        for (int i = 0; i < CQELResource::GetUnitCount(); ++i)
            EXPECT_EQ(CQELResource::GetUnitID(CQELResource::GetUnitText(2048 + static_cast<UINT>(i))), 2048 + i);
    }
    EXPECT_EQ(Line({CQELResource::GetUnitCount(), CQELResource::GetUnitText(2056)}), "32 mol/L");
    // "None" is a text of the table, but no unit.
    EXPECT_EQ(CQELResource::GetUnitText(27010), "");
    for (const char* text : {"None", "MOL/L", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(CQELResource::GetUnitID(text), -1);
    for (int i = 0; i < CQELResource::GetModelCount(); ++i) EXPECT_NE(CQELResource::GetModelName(i), "");
    for (const int index : {-1, CQELResource::GetModelCount(), INT_MAX, INT_MIN})
        EXPECT_EQ(CQELResource::GetModelName(index), "");
}
