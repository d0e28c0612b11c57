#include "qellib10/platform/storage/path.h"

#include "../support/file_error_code.h"
#include "../support/test.h"
#include "qellib10/platform/storage/std_path.h"

namespace {

LONG Refusal(std::string_view path) {
    return CodeOf([&] { qel::ToPosixPath(path); });
}

const std::string kKatakana = "\x83\x5C\x98\x41";  // its first trail byte is a backslash
const std::string kKatakanaUtf8 = "\xE3\x82\xBD\xE9\x80\xA3";

}  // namespace

TEST(Path, BecomesPosix) {
    const EnvironmentScope drive("QELLIB10_DRIVE_D", "/mnt/d/"), none("QELLIB10_DRIVE_C", nullptr),
        net("QELLIB10_NET_ROOT", nullptr);
    for (const auto& [path, posix] : Cases<std::string, std::string>{
             {"C:\\" + kKatakana + "\\a.txt", "/" + kKatakanaUtf8 + "/a.txt"},
             {"d:/", "/mnt/d"},
             {"D:rel", "/mnt/d/rel"},
             {"C:", "/"},
             {"\\tmp\\x", "/tmp/x"},
             {"a\\\\b\\", "a/b"},
             {"\\\\srv\\share\\p", "/net/srv/share/p"},
             {"\\\\srv\\share\\..\\..\\p", "/net/srv/share/p"},
             {"D:\\..\\x", "/mnt/d/x"},
             {"..\\..\\a\\..\\b", "../../b"},
             {"a\\..", "."},
             {"a?5Cb?FF", "a\\b\xFF"},
         })
        EXPECT_EQ(qel::ToPosixPath(path), posix) << path;
}

TEST(Path, OfTheStandardLibraryKeepsItsCharacters) {
    const EnvironmentScope drive("QELLIB10_DRIVE_C", nullptr);
    for (const auto& [path, native] : Cases<CString, std::string>{
             {("\\tmp\\" + kKatakana).c_str(), "/tmp/" + kKatakanaUtf8},
             {"dir\\a.txt", "dir/a.txt"},
         }) {
        EXPECT_EQ(qel::ToStdPath(path), std::filesystem::path(native));
        EXPECT_EQ(qel::FromStdPath(native), path);
    }
}

TEST(Path, ThatIsImpossibleIsRefusedWithItsReason) {
    const Cases<std::string, LONG> cases = {
        {"", 3},
        {"\\\\srv", 53},
        {"\\\\\\share\\x", 53},
        {"\\\\srv\\..\\x", 53},
        {std::string(260, 'a'), 206},
        {std::string(259, 'a'), 0},
        {"*.txt", 123},
        {"a?", 123},
        {"?5c", 123},
        {"?2Fetc", 123},     // escapes may not smuggle a separator,
        {"?00", 123},        // an end,
        {"?2E?2E\\x", 123},  // or a step up
        {"a\\\x81", 123},
        {"\x81\x20", 123},
        {"\x81\x45", 0},
    };  // the last: the very character that replaces invalid ones
    for (const auto& [path, code] : cases) EXPECT_EQ(Refusal(path), code) << path;
    const CodePageScope utf8(qel::kCodePageUtf8);
    EXPECT_EQ(Refusal("\xE3\x82"), 123);
    EXPECT_EQ(Refusal("\xEF\xBF\xBD"), 0);
}

// Whatever is on the disk can be listed, and found again under the name that the listing gives.
TEST(Path, NamesOfTheDiskComeBackTheSame) {
    // Yen, overline and wave dash, decomposed letters, half width, no UTF-8 at all, characters that only one page has.
    const auto names = Words(
        "a\\b ?5C what? a*b \xC2\xA5 \xE2\x80\xBE \xE3\x80\x9C \xE3\x81\x8B\xE3\x82\x99 e\xCC\x81 \xEF\xBD\xB6 "
        "\xFF\xFE \xE3\x82 "
        "\xF0\x9F\x98\x80 \xC2\xB5 \xED\xA0\x80 \xE7\xBA\x8A \xC2\x80");
    for (const UINT page : {qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8}) {
        const CodePageScope scope(page);
        for (const std::string& name : names) {
            const CString listed = qel::ToLibraryName(name);
            EXPECT_EQ(qel::ToPosixName(listed.View()), name) << page;
            EXPECT_EQ(listed.FindOneOf("\\/*"), -1) << page << name;
        }
    }
    EXPECT_EQ(qel::ToLibraryName("\xC2\xA5"), "?C2?A5");  // would have become a separator
    EXPECT_EQ(qel::ToLibraryName(kKatakanaUtf8), kKatakana.c_str());
}

TEST(Path, ComesBackUnderItsLongestRoot) {
    const EnvironmentScope c("QELLIB10_DRIVE_C", "/data"), d("QELLIB10_DRIVE_D", "/data/deep"),
        net("QELLIB10_NET_ROOT", "/n");
    for (const auto& [posix, path] : Cases<const char*, const char*>{
             {"/data/x", "C:\\x"},
             {"/data", "C:\\"},
             {"/data/deep/x", "D:\\x"},
             {"/database", "\\database"},
             {"/", "\\"},
             {"/n/srv/share/x", "\\\\srv\\share\\x"},
             {"/n/srv", "\\n\\srv"},
         }) {
        EXPECT_EQ(qel::ToLibraryPath(posix), path) << posix;
        EXPECT_EQ(qel::ToPosixPath(path), posix) << path;
    }
}

TEST(Path, FullPathIsAbsoluteAndClean) {
    const CString here = qel::CurrentFolder();
    EXPECT_EQ(qel::FullPath("a/./b\\..\\c"), here + "\\a\\c");
    EXPECT_EQ(qel::FullPath("D:x/"), "D:\\x");
    EXPECT_EQ(qel::FullPath("/a//b"), "\\a\\b");
    EXPECT_EQ(qel::FullPath("\\\\srv\\share\\a\\.."), "\\\\srv\\share");
}
