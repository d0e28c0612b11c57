#include "qellib10/platform/storage/find_files.h"

#include <gtest/gtest.h>

#include <chrono>

#include "../support/temp_folder.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/temporary_name.h"

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
    for (const Case& c :
         {Case{"*.*", "a a.txt .profile", ""}, Case{"*", "a a.txt .profile", ""},
          Case{"a??.txt", "a.txt ab.txt abc.txt A1.TXT", "abcd.txt b.txt"},
          Case{"foo.*", "foo foo.txt FOO.tar.gz", "foobar foo1.x"}, Case{"foo.?", "foo foo.x", "foo.xy"},
          Case{"*.txt", "a.txt a.b.txt .txt", "a.txt.bak atxt a.txtx"}, Case{"*.", "README", "a.txt .profile"},
          Case{"?", "a", "ab a.b"}, Case{"*a*", "a xax", "xxx"}, Case{"a*b*c", "abc a.b.c aXbYc", "acb abcd"},
          Case{"\x83\x5C?.txt", "\x83\x5C\x98\x41.txt \x83\x5C.txt",
               "\x83\x5C"
               "ab.txt"},
          Case{"*\x41", "xA a\x41", "\x98\x41"},  // a trail byte is no letter
          Case{"", "", "a"}}) {
        const auto each = [&](std::string names, bool expected) {
            for (std::size_t at = 0; at < names.size();) {
                const std::size_t end = std::min(names.find(' ', at), names.size());
                const std::string name = names.substr(at, end - at);
                EXPECT_EQ(qel::MatchesPattern(name, c.pattern), expected) << c.pattern << " : " << name;
                at = end + 1;
            }
        };
        each(c.matching, true);
        each(c.other, false);
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
    try {
        find("no\\*");
        ADD_FAILURE();
    } catch (const CFileException& error) {
        EXPECT_EQ(error.m_lOsError, 3);
    }
}
