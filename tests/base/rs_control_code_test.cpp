#include "qellib10/base/rs_control_code.h"

#include "../support/test.h"
#include "qellib10/platform/text/string_table.h"

TEST(RSControlCode, EndsOfLinesHaveNamesAndNoneIsTheTablesOwn) {
    const CodePageScope page(qel::kCodePageJapanese);
    static constexpr qel::StringTableEntry kOfAnApplication[] = {{27010, "not this", nullptr}};
    qel::RegisterStringTable(kOfAnApplication);
    for (const auto& [stored, display] : Cases<const char*, const char*>{
             {"9600,$0d$0a", "9600,[CR][LF]"},
             {"$0D$0D$0A$0d", "[CR][CR][LF][CR]"},
             {"\x83\x5C$0a", "\x83\x5C[LF]"},
             {"$$0d0d $0 $0b $", "$[CR]0d $0 $0b $"},
             {"", "None"},
         }) {
        CString text(stored);
        CRSControlCode::ConvertDisplay(text);
        EXPECT_EQ(text, display);
    }
}
