#include "qellib10/platform/storage/path.h"

#include <gtest/gtest.h>

#include "../support/code_page_scope.h"
#include "../support/environment_scope.h"
#include "../support/file_error_code.h"
#include "../support/words.h"

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
    struct Case {
        std::string path, posix;
    };
    for (const Case& c :
         {Case{"C:\\" + kKatakana + "\\a.txt", "/" + kKatakanaUtf8 + "/a.txt"}, Case{"D:\\a\\b", "/mnt/d/a/b"},
          Case{"d:/", "/mnt/d"}, Case{"D:rel", "/mnt/d/rel"}, Case{"C:", "/"}, Case{"\\tmp\\x", "/tmp/x"},
          Case{"//tmp//x", "/tmp/x"}, Case{"dir/file", "dir/file"}, Case{"a\\\\b\\", "a/b"},
          Case{"\\\\srv\\share\\p", "/net/srv/share/p"}, Case{"\\\\srv\\share\\..\\..\\p", "/net/srv/share/p"},
          Case{"\\..\\..\\etc", "/etc"}, Case{"D:\\..\\x", "/mnt/d/x"}, Case{"..\\..\\a\\..\\b", "../../b"},
          Case{"a\\..", "."}, Case{"a?5Cb?FF", "a\\b\xFF"}}) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(qel::ToPosixPath(c.path), c.posix);
    }
}

TEST(Path, ThatCannotBeSaysWhy) {
    struct Case {
        std::string path;
        LONG code;
    };
    for (const Case& c : {Case{"", 3}, Case{"\\\\srv", 53}, Case{"\\\\srv\\", 53}, Case{"\\\\\\share\\x", 53},
                          Case{"\\\\srv\\..\\x", 53}, Case{std::string(260, 'a'), 206}, Case{std::string(259, 'a'), 0},
                          Case{"*.txt", 123}, Case{"a?", 123}, Case{"?5c", 123},
                          Case{"?2Fetc", 123},     // escapes may not smuggle a separator,
                          Case{"?00", 123},        // an end,
                          Case{"?2E?2E\\x", 123},  // or a step up
                          Case{"a\\\x81", 123}, Case{"\x81\x20", 123},
                          Case{"\x81\x45", 0}}) {  // the very character that stands for what is none
        SCOPED_TRACE(c.path);
        EXPECT_EQ(Refusal(c.path), c.code);
    }
    const CodePageScope utf8(qel::kCodePageUtf8);
    EXPECT_EQ(Refusal("\xE3\x82"), 123);
    EXPECT_EQ(Refusal("\xEF\xBF\xBD"), 0);
}

// Whatever stands on the disk can be listed, and found again under the name that the listing gives.
TEST(Path, NamesOfTheDiskComeBackTheSame) {
    // Yen, overline and wave dash, decomposed letters, half width, no UTF-8 at all, what one page or the other lacks.
    const auto names = Words(
        "a\\b ?5C what? a*b \xC2\xA5 \xE2\x80\xBE \xE3\x80\x9C \xE3\x81\x8B\xE3\x82\x99 e\xCC\x81 \xEF\xBD\xB6 "
        "\xFF\xFE \xE3\x82 "
        "\xF0\x9F\x98\x80 \xC2\xB5 \xED\xA0\x80 \xE7\xBA\x8A \xC2\x80");
    for (const UINT page : {qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8}) {
        const CodePageScope scope(page);
        for (const std::string& name : names) {
            SCOPED_TRACE(testing::Message() << page << ' ' << name);
            const CString listed = qel::ToLibraryName(name);
            EXPECT_EQ(qel::ToPosixName(listed.View()), name);
            EXPECT_EQ(listed.FindOneOf("\\/*"), -1);
        }
    }
    EXPECT_EQ(qel::ToLibraryName("\xC2\xA5"), "?C2?A5");  // would have become a separator
    EXPECT_EQ(qel::ToLibraryName(kKatakanaUtf8), kKatakana.c_str());
}

TEST(Path, ComesBackUnderItsLongestRoot) {
    const EnvironmentScope c("QELLIB10_DRIVE_C", "/data"), d("QELLIB10_DRIVE_D", "/data/deep"),
        net("QELLIB10_NET_ROOT", "/n");
    struct Case {
        const char *posix, *path;
    };
    for (const Case& test :
         {Case{"/data/x", "C:\\x"}, Case{"/data", "C:\\"}, Case{"/data/deep/x", "D:\\x"},
          Case{"/database", "\\database"}, Case{"/", "\\"}, Case{"/n/srv/share/x", "\\\\srv\\share\\x"},
          Case{"/n/srv", "\\n\\srv"}, Case{"a/b", "a\\b"}}) {
        SCOPED_TRACE(test.posix);
        EXPECT_EQ(qel::ToLibraryPath(test.posix), test.path);
        EXPECT_EQ(qel::ToPosixPath(test.path), test.posix);
    }
}

TEST(Path, FullPathIsAbsoluteAndClean) {
    const CString here = qel::CurrentFolder();
    EXPECT_EQ(qel::FullPath("a/./b\\..\\c"), here + "\\a\\c");
    EXPECT_EQ(qel::FullPath("D:x/"), "D:\\x");
    EXPECT_EQ(qel::FullPath("/a//b"), "\\a\\b");
    EXPECT_EQ(qel::FullPath("\\\\srv\\share\\a\\.."), "\\\\srv\\share");
}
