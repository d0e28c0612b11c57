#include "qellib10/runtime/qel_resource.h"

#include <gtest/gtest.h>

#include <climits>

#include "qellib10/platform/text/string_table.h"

TEST(QelResource, UnitsAreFoundByTheirTextsAndModelsByTheirIndex) {
    for (const auto language : {qel::Language::Japanese, qel::Language::English}) {
        qel::SetTableLanguage(language);
        for (int i = 0; i < CQELResource::GetUnitCount(); ++i) {
            EXPECT_EQ(CQELResource::GetUnitID(CQELResource::GetUnitText(2048 + static_cast<UINT>(i))), 2048 + i);
        }
    }
    EXPECT_EQ(CQELResource::GetUnitCount(), 32);
    EXPECT_EQ(CQELResource::GetUnitText(2056), "mol/L");
    // "None" is a text of the table, but no unit.
    for (const char* text : {"None", "MOL/L", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(CQELResource::GetUnitID(text), -1);
    }
    for (const UINT id : {0U, 2047U, 2080U, 27010U}) EXPECT_EQ(CQELResource::GetUnitText(id), "");

    for (int i = 0; i < CQELResource::GetModelCount(); ++i) EXPECT_NE(CQELResource::GetModelName(i), "");
    for (const int index : {-1, CQELResource::GetModelCount(), INT_MAX, INT_MIN}) {
        EXPECT_EQ(CQELResource::GetModelName(index), "");
    }
}
