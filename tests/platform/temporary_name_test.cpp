#include "qellib10/platform/storage/temporary_name.h"

#include "../support/file_error_code.h"
#include "../support/run_at_once.h"
#include "../support/test.h"

TEST(TemporaryName, IsBuiltFromItsPartsOrSaysWhyNot) {
    const EnvironmentScope first("TMPDIR", "relative"), second("TMP", "/var//tmp/"), third("TEMP", "/never");
    EXPECT_EQ(qel::TemporaryFolder(), "\\var\\tmp\\");
    const EnvironmentScope none("TMP", nullptr), neither("TEMP", nullptr);
    EXPECT_EQ(qel::TemporaryFolder(), "\\tmp\\");
    EXPECT_EQ(qel::TemporaryName("\\no", "abcdef", 0x1A), "\\no\\abc001A.TMP");
    EXPECT_EQ(qel::TemporaryName("no/", "ab\x83\x5C", 0xFFFF), "no/abFFFF.TMP");  // never half a character
    EXPECT_EQ(qel::TemporaryName("\x83\x5C", "", 1), "\x83\x5C\\0001.TMP");       // its trail byte is not a separator
    EXPECT_EQ(CodeOf([] { qel::TemporaryName("\\no\\no", "x"); }), 267);
    for (const char* prefix : {"..\\", "../", "\\x", "a/b"}) {  // out of the folder
        EXPECT_EQ(CodeOf([&] { qel::TemporaryName("\\tmp", prefix); }), 123) << prefix;
        EXPECT_EQ(CodeOf([&] { qel::TemporaryName("\\tmp", prefix, 1); }), 123) << prefix;
    }
    EXPECT_EQ(qel::TemporaryName("\\no", "abc\\", 1), "\\no\\abc0001.TMP");  // only three bytes are looked at
    EXPECT_EQ(CodeOf([] { qel::TemporaryName(std::string(247, 'a'), "x"); }), 111);
}

TEST(TemporaryName, NoTwoProcessesGetTheSame) {
    constexpr int kAtOnce = 4, kNames = 300;
    const TempFolder folder;
    const auto make = [&](int) {
        for (int i = 0; i < kNames; ++i) qel::TemporaryName(folder.Path().View(), "t");
        return 0;
    };
    EXPECT_EQ(RunAtOnce(kAtOnce, make), 0);
    EXPECT_EQ(folder.Count(), kAtOnce * kNames);
    const auto first = std::filesystem::directory_iterator(folder.Posix())->status().permissions();
    EXPECT_EQ(first, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}
