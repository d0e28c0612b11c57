#include "qellib10/platform/ini/ini_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "../support/full_disk.h"
#include "../support/run_at_once.h"
#include "../support/test.h"
#include "qellib10/platform/storage/file.h"

namespace {

using namespace std::string_literals;

constexpr const char* kDefault = "default  ";
constexpr DWORD kSize = 1024;

// An INI file of its own for each test.
class IniFile : public testing::Test {
protected:
    std::string Value(const char* section, const char* key) const {
        return qel::ReadProfileString(section, key, kDefault, kSize, m_name.c_str());
    }
    bool Set(const char* section, const char* key, const char* value) const {
        return qel::WriteProfileString(section, key, value, m_name.c_str());
    }
    void Write(const std::string& bytes) const { m_folder.Write("a.ini", bytes); }
    std::string Bytes() const { return m_folder.Read("a.ini"); }

    TempFolder m_folder;
    std::string m_name = m_folder.Name("a.ini");
};

}  // namespace

TEST_F(IniFile, ReadsLinesAsThePlatformDoes) {
    Write(
        "outside=1\r\n[s]\nplain=value\r\n\t spaced name \x1A=  inner  blanks \f\r\n;plain2=comment\n"
        "  ; indented=comment\n"
        "empty=\n=no name\nno equals\nfirst=1\nFIRST=2\nboth=a=b\ndouble=\"  x \"\nsingle='\"y\"'\nopen=\"a\none=\"\n"
        "hollow=\"\"\n[not a header=z\n"
        "\x83\x5D=\x83\x5C \x95\x5C\n[ \x83\x5D ] behind\nk=trail\n"  // trail bytes are ] and backslash
        "[a]b]\nk=last bracket\n[S]\nplain=second\nonly=second\n[]\nk=nameless\n[end]\nk=no line end");
    std::string values;
    for (const char* key : {"\tPLAIN ", "Spaced Name", "plain2", "; indented", "empty", "", "no equals", "First",
                            "both", "double", "single", "open", "one", "hollow", "[not a header", "\x83\x5D", "only"})
        values += Value(" S ", key) + '|';
    EXPECT_EQ(values,
              "value|inner  blanks|default|default||no name|default|1|a=b|"
              "  x |\"y\"|\"a|\"||z|\x83\x5C \x95\x5C|default|");
    values.clear();
    for (const char* section : {"\x83\x5D", "A]B", "", "end", "missing"}) values += Value(section, "k") + '|';
    EXPECT_EQ(values, "trail|last bracket|nameless|no line end|default|");
    EXPECT_EQ(Value("", "outside"), "default");
    EXPECT_EQ(Value(nullptr, nullptr), "s\0\x83\x5D\0a]b\0S\0\0end\0"s);
    EXPECT_EQ(Value("end", nullptr), "k\0"s);
    EXPECT_EQ(Value("missing", nullptr), "default");
}

TEST_F(IniFile, ListsASectionAndCutsWhatDoesNotFit) {
    Write("[section1]\nname1 = val1\nname2=\n;c\n\nname3\nname4=\"v\x83\x5C\"\n[section2]\n");
    const std::string whole = "name1=val1\0name2=\0name3\0name4=\"v\x83\x5C\"\0"s;
    const auto length = static_cast<DWORD>(whole.size());
    const auto listed = [&](const char* section, DWORD size) {
        return qel::ReadProfileSection(section, size, m_name.c_str()).value_or("not read");
    };
    EXPECT_EQ(listed("SECTION1", length + 2), whole);
    EXPECT_EQ(listed("section1", length + 1), whole.substr(0, length - 1));  // full: the length says so
    EXPECT_EQ(listed("section1", length - 1), whole.substr(0, length - 4) + '\0');
    EXPECT_EQ(Line({listed("section1", 1), listed("section2", 99), listed("missing", 99), listed(nullptr, 99)}), "   ");
    const char* cut[] = {"", "", "v", "v", "v\x83\x5C"};  // no half character
    for (DWORD size = 0; size < 5; ++size)
        EXPECT_EQ(qel::ReadProfileString("section1", "name4", "", size, m_name.c_str()), cut[size]);
}

TEST_F(IniFile, ChangesOnlyTheBytesThatItMust) {
    EXPECT_TRUE(Set("s", "gone", nullptr));
    EXPECT_FALSE(m_folder.Has("a.ini"));  // nothing to delete, nothing to make
    for (const auto& [before, section, key, value, after] :
         Cases<const char*, const char*, const char*, const char*, const char*>{
             {"", "s", "k", "v", "[s]\r\nk=v\r\n"},
             {"[s]\n K = 1 \r\n", "s", "k", " 2 ", "[s]\nK= 2 \r\n"},
             {"[s]\nk=1", "s", "k", "2", "[s]\nk=2"},
             {"[s]\nk=1\nK=2\n", "s", "K", "3", "[s]\nk=3\nK=2\n"},
             {"[s]\nk=1\n\n \n[t]\n", "s", " l ", "2", "[s]\nk=1\nl=2\r\n\n \n[t]\n"},
             {"[s]\n;c\n\n", "s", "k", "v", "[s]\n;c\nk=v\r\n\n"},
             {"[s]", "s", "k", "v", "[s]\r\nk=v\r\n"},
             {"[s]\n[t]\n[s]\nk=1\n", "s", "k", "v", "[s]\nk=v\r\n[t]\n[s]\nk=1\n"},
             {"[s]\nk=1", " t ", "k", "v", "[s]\nk=1\r\n[t]\r\nk=v\r\n"},
             {"\xEF\xBB\xBF[s]\nk=1\n", "s", "k", "2", "\xEF\xBB\xBF[s]\nk=2\n"},
             {"\xEF\xBB\xBF", "s", "k", "v", "\xEF\xBB\xBF[s]\r\nk=v\r\n"},
             {"[s]\nk=1\nl=2", "s", "l", nullptr, "[s]\nk=1\n"},
             {"a\n[s]\nk=1\n\n[t]\n", "s", nullptr, "ignored", "a\n[t]\n"},
             {"[s]\n", "missing", nullptr, nullptr, "[s]\n"},
             {"\x83\x5B\n[\x83\x5D]\n", "\x83\x5D", "\x95\x5C", "v", "\x83\x5B\n[\x83\x5D]\n\x95\x5C=v\r\n"},
         }) {
        SCOPED_TRACE(before);
        Write(before);
        EXPECT_TRUE(Set(section, key, value));
        EXPECT_EQ(Bytes(), after);
    }
}

TEST_F(IniFile, RefusesWhatWouldNotBeFoundAgain) {
    const std::string before = "[s]\nk=1\n[open=1\n";
    Write(before);
    // clang-format off
    const char* const cases[][3] = {
        {nullptr, "k", "v"},
        {"s", "k", "a\nb"},
        {"s", "k", "a\rb"},
        {"s", "x\n[y]", "v"},
        {"s", "a=b", "v"},
        {"s", ";k", "v"},
        {"s", "[k]", "v"},
        {"broken\x83", "k", "v"},
        {"s", "[open", "a]"},
    };
    // clang-format on
    for (const auto& [section, key, value] : cases) EXPECT_FALSE(Set(section, key, value)) << key;
    for (const auto& [section, entry] : Cases<const char*, const char*>{
             {"s", "[t]"},
             {nullptr, "k=2"},
         })
        EXPECT_FALSE(qel::AddProfileEntry(section, entry, m_name.c_str()));
    EXPECT_EQ(Bytes(), before);

    const std::string utf16 = "\xFF\xFE[\0s\0]\0\n\0k\0=\0h0\n\0"s;  // the value is one Japanese letter
    Write(utf16);
    EXPECT_EQ(Value("s", "k"), "\x82\xC6");
    EXPECT_FALSE(Set("s", "k", "2"));
    EXPECT_EQ(Bytes(), utf16);
    const CodePageScope page(qel::kCodePageUtf8);
    EXPECT_EQ(Value("s", "k"), "\xE3\x81\xA8");  // read again for another code page
    ASSERT_EQ(::mkfifo(m_folder.Posix("pipe").c_str(), 0600), 0);
    m_folder.Write("huge.ini", "[s]\nk=1\n");
    std::filesystem::resize_file(m_folder.Posix("huge.ini"), std::uintmax_t{1} << 40);
    for (const std::string& name : {m_folder.Name("missing/a.ini"), m_folder.Name(""), m_folder.Name("pipe"),
                                    m_folder.Name("huge.ini"), std::string(), std::string("bad?name.ini")}) {
        EXPECT_FALSE(qel::WriteProfileString("s", "k", "v", name.c_str())) << name;
        EXPECT_EQ(qel::ReadProfileString("s", "k", "d", kSize, name.c_str()), "d") << name;
    }
}

TEST_F(IniFile, ReplacesTheFileAndKeepsWhatItIs) {
    Write("[s]\nk=1\n");
    ::chmod(m_folder.Posix("a.ini").c_str(), 0640);
    std::filesystem::create_symlink("a.ini", m_folder.Posix("link.ini"));
    CFile held(m_name.c_str(), CFile::modeRead | CFile::shareDenyWrite);
    std::thread closing([&] { ::usleep(50'000), held.Close(); });  // waited for
    EXPECT_TRUE(qel::WriteProfileString("s", "k", "2", m_folder.Name("link.ini").c_str()));
    closing.join();
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.Posix("link.ini")));
    EXPECT_EQ(Value("s", "k"), "2");
    struct stat status = {}, again = {};
    ::stat(m_folder.Posix("a.ini").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    EXPECT_TRUE(Set("s", "k", "2"));  // the same again: nothing to write
    ::stat(m_folder.Posix("a.ini").c_str(), &again);
    EXPECT_EQ(again.st_ino, status.st_ino);

    ::chmod(m_folder.Posix("a.ini").c_str(), 0440);
    EXPECT_FALSE(Set("s", "k", "3"));
    EXPECT_EQ(m_folder.Count(), 2);

    const EnvironmentScope state("QELLIB10_STATE_DIR", m_folder.Posix().c_str());
    EXPECT_EQ(qel::ReadProfileString("s", "k", "", kSize, "a.ini"), "2");
    EXPECT_EQ(Line({qel::WriteProfileString("s", "k", "3", "WIN.INI"), m_folder.Has("WIN.INI")}), "1 1");
}

TEST_F(IniFile, IsMadeWhereALinkLeads) {
    std::filesystem::create_directory(m_folder.Posix("d"));
    std::filesystem::create_symlink("d/real.ini", m_folder.Posix("step.ini"));
    std::filesystem::create_symlink(m_folder.Posix("step.ini"), m_folder.Posix("a.ini"));
    EXPECT_TRUE(Set("s", "k", "1"));
    EXPECT_EQ(m_folder.Read("d/real.ini"), "[s]\r\nk=1\r\n");
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.Posix("a.ini")));
    // Refused at once: neither is another writer's doing.
    for (const char* target : {"none/real.ini", "loop.ini"}) {
        const auto start = std::chrono::steady_clock::now();
        std::filesystem::create_symlink(target, m_folder.Posix("loop.ini"));
        EXPECT_FALSE(qel::WriteProfileString("s", "k", "1", m_folder.Name("loop.ini").c_str())) << target;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1)) << target;
        std::filesystem::remove(m_folder.Posix("loop.ini"));
    }
}

// In a folder that is closed, or where others' files stay.
TEST_F(IniFile, IsSetInPlaceWhereItCannotBeReplaced) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs another user";
    const std::string longer = "[s]\nk=" + std::string(300, 'x') + "\n";
    for (const mode_t folder : {0555, 01777}) {
        Write(longer);
        ::chmod(m_folder.Posix("a.ini").c_str(), 0666);
        ::chmod(m_folder.Posix().c_str(), folder);
        const auto asOther = [&](auto&& body) { return InChild([&] { return ::seteuid(65534) == 0 ? body() : 98; }); };
        EXPECT_EQ(asOther([&] { return Set("s", "k", "2"); }), 1) << folder;
        EXPECT_EQ(Bytes(), "[s]\nk=2\n") << folder;
        EXPECT_EQ(asOther([&] {
                      CFile held(m_name.c_str(), CFile::modeRead | CFile::shareDenyWrite);
                      std::thread closing([&] { ::usleep(50'000), held.Close(); });
                      const bool isSet = Set("s", "k", "3");
                      closing.join();
                      return isSet;
                  }),
                  1);
        EXPECT_EQ(asOther([&] { return OnFullDisk(8, [&] { return Set("s", "k", "44"); }); }), 0);
        EXPECT_EQ(Bytes(), "[s]\nk=3\n") << folder;
        ::chmod(m_folder.Posix("a.ini").c_str(), 0644);
        EXPECT_EQ(asOther([&] { return Set("s", "k", "5"); }), 0) << folder;
    }
    EXPECT_EQ(m_folder.Count(), 1);
}

TEST_F(IniFile, NoticesEveryChange) {
    // Same size, and often within one tick of the file system's clock: only the content differs.
    for (int i = 0; i < 150; ++i) {
        Write("[s]\nk=" + std::to_string(100 + i) + "\n");
        ASSERT_EQ(Value("s", "k"), std::to_string(100 + i));
    }
    std::filesystem::remove(m_folder.Posix("a.ini"));
    EXPECT_EQ(Value("s", "k"), "default");
    for (int i = 0; i < 100; ++i) {  // more files than are kept, each written and later read
        const std::string name = m_folder.Name(std::to_string(i % 50));
        EXPECT_TRUE(i >= 50 || qel::WriteProfileString("s", "k", name.c_str(), name.c_str()));
        EXPECT_EQ(qel::ReadProfileString("s", "k", "", kSize, name.c_str()), name);
    }
}

TEST_F(IniFile, WritersOfDifferentKeysAllWinAndReadersSeeWholeFiles) {
    constexpr int kWriters = 6;
    const std::string padding(3000, 'x');
    ASSERT_TRUE(Set("s", "padding", padding.c_str()));
    const auto write = [&](int writer) {
        int failed = 0;
        for (int round = 0; round < 40; ++round) {
            const std::string key = std::to_string(writer * 4 + round % 4);
            failed += !Set("s", key.c_str(), std::to_string(round).c_str());
            failed += qel::ReadProfileString("s", "padding", "", 4000, m_name.c_str()) != padding;
        }
        return failed;
    };
    EXPECT_EQ(RunAtOnce(kWriters, write), 0);
    for (int key = 0; key < kWriters * 4; ++key)
        EXPECT_EQ(Value("s", std::to_string(key).c_str()), std::to_string(36 + key % 4));
    EXPECT_EQ(m_folder.Count(), 1);
}
