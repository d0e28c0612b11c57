#include "qellib10/platform/storage/find_files.h"

#include <gtest/gtest.h>

#include <chrono>

#include "../support/file_error_code.h"
#include "../support/temp_folder.h"
#include "../support/words.h"
#include "qellib10/platform/storage/file_operations.h"

namespace {

std::string Names(const std::vector<qel::FoundFile>& files) {
    std::string names;
    for (const qel::FoundFile& file : files) {
        names += std::string(file.name.View()) + (file.isFolder ? "/" : "") + (file.isLink ? "@ " : " ");
    }
    return names;
}

}  // namespace

TEST(FindFiles, MatchesByThePlatformsRules) {
    struct Case {
        const char *pattern, *matching, *other;  // names parted by blanks
    };
    // A character of two bytes is one character, and its trail byte is no letter.
    for (const Case& c :
         {Case{"*.*", "a a.txt .profile", ""}, Case{"*", "a a.txt .profile", ""},
          Case{"a??.txt", "a.txt ab.txt abc.txt A1.TXT", "abcd.txt b.txt"},
          Case{"foo.*", "foo foo.txt FOO.tar.gz", "foobar foo1.x"}, Case{"foo.?", "foo foo.x", "foo.xy"},
          Case{"*.txt", "a.txt a.b.txt .txt", "a.txt.bak atxt a.txtx"}, Case{"*.", "README", "a.txt .profile"},
          Case{"?", "a", "ab a.b"}, Case{"*a*", "a xax", "xxx"}, Case{"a*b*c", "abc a.b.c aXbYc", "acb abcd"},
          Case{"\x83\x5C?.txt", "\x83\x5C\x98\x41.txt \x83\x5C.txt", "\x83\x5Czz.txt"},
          Case{"*\x41", "xA a\x41", "\x98\x41"}, Case{"", "", "a"}}) {
        for (const std::string& name : Words(c.matching)) EXPECT_TRUE(qel::MatchesPattern(name, c.pattern)) << name;
        for (const std::string& name : Words(c.other)) EXPECT_FALSE(qel::MatchesPattern(name, c.pattern)) << name;
    }
}

TEST(FindFiles, NoPatternTakesLong) {
    std::string pattern;
    for (int i = 0; i < 100; ++i) pattern += "*a?";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(qel::MatchesPattern(std::string(255, 'a') + "b", pattern + "c"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(FindFiles, ListsWhatADeletionFinds) {
    const TempFolder folder;
    for (const char* name : {"b.txt", "a.TXT", ".txt", "c", "a\\b.txt", "\xC2\xA5.txt"}) folder.Write(name, "");
    std::filesystem::create_directory(folder.Posix("d.txt"));
    std::filesystem::create_directory_symlink("d.txt", folder.Posix("l.txt"));
    const auto find = [&](const char* name) { return qel::FindFiles((folder.Path() + "\\" + name).View()); };
    EXPECT_EQ(Names(find("*.txt")), ".txt ?C2?A5.txt a.TXT a?5Cb.txt b.txt d.txt/ l.txt/@ ");
    EXPECT_EQ(Names(find("c")), "c ");
    EXPECT_EQ(Names(find("C")), "");  // without wildcards exactly that name
    EXPECT_EQ(find("*").size(), 8U);
    for (const qel::FoundFile& file : find("*")) {
        if (!file.isFolder) qel::DeleteFile((folder.Path() + "\\" + file.name).View());
    }
    EXPECT_EQ(folder.Count(), 2);
    EXPECT_EQ(CodeOf([&] { find("no\\*"); }), 3);
}
