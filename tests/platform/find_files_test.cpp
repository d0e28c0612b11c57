#include "qellib10/platform/storage/find_files.h"

#include <chrono>

#include "../support/test.h"

TEST(FindFiles, MatchesByThePlatformsRules) {
    // Pattern, names that match and others. Two bytes may be one character; its trail byte is not a letter.
    for (const auto& [pattern, matching, other] : Cases<const char*, const char*, const char*>{
             {"*.*", "a a.txt .profile", ""},
             {"*", "a a.txt .profile", ""},
             {"?", "a", "ab a.b"},
             {"a??.txt", "a.txt ab.txt abc.txt A1.TXT", "abcd.txt b.txt"},
             {"foo.*", "foo foo.txt FOO.tar.gz", "foobar foo1.x"},
             {"foo.?", "foo foo.x", "foo.xy"},
             {"*.txt", "a.txt a.b.txt .txt", "a.txt.bak atxt a.txtx"},
             {"*.", "README", "a.txt .profile"},
             {"a*b*c", "abc a.b.c aXbYc", "acb abcd"},
             {"\x83\x5C?.txt", "\x83\x5C\x98\x41.txt \x83\x5C.txt", "\x83\x5Czz.txt"},
             {"*\x41", "xA a\x41", "\x98\x41"},
             {"", "", "a"},
         }) {
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
