#include "qellib10/platform/storage/find_files.h"

#include <gtest/gtest.h>

#include <chrono>

#include "../support/cases.h"
#include "../support/file_error_code.h"
#include "../support/temp_folder.h"
#include "../support/words.h"

namespace {

std::string Names(const std::vector<qel::FoundFile>& files) {
    std::string names;
    for (const qel::FoundFile& file : files) names.append(file.name.View()).append(file.isFolder ? "/ " : " ");
    return names;
}

}  // namespace

TEST(FindFiles, MatchesByThePlatformsRules) {
    // Pattern, names that match and others. A character of two bytes is one character, and its trail byte is no letter.
    // clang-format off
    const Cases<const char*, const char*, const char*> cases = {
        {"*.*", "a a.txt .profile", ""}, {"*", "a a.txt .profile", ""},
        {"a??.txt", "a.txt ab.txt abc.txt A1.TXT", "abcd.txt b.txt"},
        {"foo.*", "foo foo.txt FOO.tar.gz", "foobar foo1.x"}, {"foo.?", "foo foo.x", "foo.xy"},
        {"*.txt", "a.txt a.b.txt .txt", "a.txt.bak atxt a.txtx"}, {"*.", "README", "a.txt .profile"},
        {"?", "a", "ab a.b"}, {"*a*", "a xax", "xxx"}, {"a*b*c", "abc a.b.c aXbYc", "acb abcd"},
        {"\x83\x5C?.txt", "\x83\x5C\x98\x41.txt \x83\x5C.txt", "\x83\x5Czz.txt"}, {"*\x41", "xA a\x41", "\x98\x41"},
        {"", "", "a"}};
    // clang-format on
    for (const auto& [pattern, matching, other] : cases) {
        for (const std::string& name : Words(matching)) EXPECT_TRUE(qel::MatchesPattern(name, pattern)) << name;
        for (const std::string& name : Words(other)) EXPECT_FALSE(qel::MatchesPattern(name, pattern)) << name;
    }
}

TEST(FindFiles, NoPatternTakesLong) {
    std::string pattern;
    for (int i = 0; i < 100; ++i) pattern += "*a?";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(qel::MatchesPattern(std::string(255, 'a') + "b", pattern + "c"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(FindFiles, ListsOneFolder) {
    const TempFolder folder;
    for (const char* name : {"b.txt", "a.TXT", ".txt", "c", "a\\b.txt", "\xC2\xA5.txt"}) folder.Write(name, "");
    std::filesystem::create_directory(folder.Posix("d.txt"));
    std::filesystem::create_directory_symlink("d.txt", folder.Posix("l.txt"));
    const auto find = [&](const char* name) { return qel::FindFiles((folder.Path() + "\\" + name).View()); };
    EXPECT_EQ(Names(find("*.txt")), ".txt ?C2?A5.txt a.TXT a?5Cb.txt b.txt d.txt/ l.txt/ ");
    EXPECT_EQ(Names(find("c")), "c ");
    EXPECT_EQ(Names(find("C")), "");  // without wildcards exactly that name
    EXPECT_EQ(find("*").size(), 8U);
    EXPECT_EQ(CodeOf([&] { find("no\\*"); }), 3);
}
