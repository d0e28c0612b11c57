#include "qellib10/secure/history_renew_info.h"

#include <fstream>
#include <iterator>
#include <memory>

#include "../support/archive_bytes.h"
#include "../support/test.h"

namespace {

CHistoryRenewInfo Renewal() {
    CHistoryRenewInfo info;
    info.SetRenewDateTime(COleDateTime(2024, 2, 29, 12, 0, 0));
    info.SetFileName("method.xml");
    info.SetOperator("\x8D\xB2\x93\xA1");  // a name in code page 932
    info.SetComment("blank raised to 0.03 mL");
    return info;
}

std::string KeptBytes() {
    std::ifstream file(QELLIB10_TEST_DATA "/renewal.bin", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST(HistoryRenewInfo, KeptRecordIsReadAndWrittenAlike) {
    CHistoryRenewInfo info;
    EXPECT_EQ(info.GetRenewDateTime(), COleDateTime(2001, 1, 1, 0, 0, 0));
    EXPECT_EQ(Load(info, KeptBytes()), 0);
    EXPECT_EQ(info, Renewal());
    EXPECT_EQ(Stored(info), KeptBytes());
    CHistoryRenewInfo other = info;
    other.SetComment("Blank raised to 0.03 mL");
    EXPECT_NE(info, other);
    info.InitParameter();
    EXPECT_EQ(info, CHistoryRenewInfo());
    const std::unique_ptr<CObject> made(CHistoryRenewInfo::CreateObject());
    EXPECT_EQ(made->GetRuntimeClass(), CRuntimeClass::FromName("CHistoryRenewInfo"));
}

TEST(HistoryRenewInfo, OtherRecordsAndCutOnesChangeNothing) {
    const std::string whole = KeptBytes();
    constexpr std::size_t kHead = 17 + 5;  // tag and version with their lengths
    CHistoryRenewInfo info;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(Load(info, whole.substr(0, i)), -CArchiveException::endOfFile);
        if (i == 0 || i == 17 || i >= kHead) continue;  // no character of tag or version
        std::string other = whole;
        ++other[i];
        EXPECT_EQ(Load(info, other), static_cast<int>(whole.size() - kHead)) << "the rest is left unread";
    }
    EXPECT_EQ(info, CHistoryRenewInfo());
}
