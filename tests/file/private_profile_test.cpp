#include "qellib10/file/private_profile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <thread>

#include "../support/child_process.h"
#include "../support/registry_scope.h"
#include "qellib10/runtime/system_info.h"

namespace {

constexpr const char* kNone = nullptr;
constexpr const char* kPlace = "HKEY_CURRENT_USER\\Software\\Meter";

// Reaches what derived classes may call.
class Profile : public CPrivateProfile {
public:
    using CPrivateProfile::BackupSub;
    using CPrivateProfile::CPrivateProfile;
    using CPrivateProfile::DeleteKeySub;
};

class RegistryProfile : public testing::Test {
protected:
    RegistryScope m_registry;
    Profile m_profile{kPlace, CPrivateProfile::registryMode};
};

CString SectionOf(int value) {
    CString name;
    name.Format("S\\%d", value % 3);
    return name;
}

}  // namespace

TEST_F(RegistryProfile, AndIniFilesGiveBackWhatWasSet) {
    const std::string longest(1023, 'x');
    for (const int mode : {0, 7, 1}) {
        SCOPED_TRACE(mode);
        const CString file = m_registry.Folder().Path(std::to_string(mode));
        Profile profile(mode == CPrivateProfile::registryMode ? kPlace : static_cast<const char*>(file), mode);
        EXPECT_EQ(profile.Get("S", "k", "d") + profile.Get("S", "k", nullptr), "d");
        for (const char* text : {"", "\x83\x5C \x95\x5C=", "12abc", longest.c_str()}) {
            EXPECT_EQ(profile.Set("S", "k", text), 1);
            EXPECT_EQ(profile.Get("s", "K", ""), text);
        }
        for (const int number : {0, -1, 2147483647, -2147483647 - 1}) {
            EXPECT_EQ(profile.Set("Section\\Sub", number, number), 1);
            EXPECT_EQ(profile.Get("section\\SUB", number, 7), number);
            EXPECT_EQ(profile.Get("section\\SUB", std::to_string(number).c_str(), 7), number);
        }
        EXPECT_EQ(profile.Set("", -3, "negative"), 1);
        EXPECT_EQ(profile.Get("", -3, "d"), "negative");
        const Profile copy(profile);
        profile.Close();
        EXPECT_EQ(profile.Set("S", "k", "after"), 0);
        EXPECT_EQ(profile.Get("S", "k", "d  "), "d  ");
        EXPECT_EQ(copy.Get("S", "k", "d"), longest.c_str());
    }
}

TEST(PrivateProfile, ReadsIniTextAsThePlatformDoes) {
    const TempFolder folder;
    folder.Write("a.ini", "[s]\nnumber=12abc\nempty=\nword=abc\nblank= +5 \nhuge=99999999999\nminus=- 5\n" +
                              ("long=" + std::string(1100, 'x')) + "\n");
    Profile ini(folder.Path("a.ini"));
    const int numbers[] = {12, 7, 0, 5, 2147483647, 0};
    const char* texts[] = {"12abc", "d  ", "abc", "+5", "99999999999", "- 5"};
    int at = 0;
    for (const char* key : {"number", "empty", "word", "blank", "huge", "minus"}) {
        EXPECT_EQ(ini.Get("s", key, 7), numbers[at]) << key;
        EXPECT_EQ(ini.Get("s", key, "d  "), texts[at++]) << key;
    }
    EXPECT_EQ(ini.Get("s", "missing", "d  "), "d");  // what the platform does with a default
    EXPECT_EQ(ini.Get("s", "long", "").GetLength(), 1023);
    EXPECT_EQ(ini.Get("s", kNone, "d"), "number");

    EXPECT_EQ(ini.Set("s", "word", 42) + ini.Set("s", "number", kNone) + ini.Set(nullptr, "k", "v"), 2);
    CStringArray lines;
    lines.Add("old");
    EXPECT_EQ(ini.GetAllStrings("S", lines), 1);
    ASSERT_EQ(lines.GetSize(), 6);
    EXPECT_EQ(lines[1], "word=42");
    EXPECT_EQ(ini.GetAllStrings("missing", lines), 1);
    EXPECT_EQ(lines.GetSize(), 0);
    EXPECT_EQ(ini.Set("s", kNone, "v"), 1);
    EXPECT_EQ(folder.Read("a.ini"), "");

    DWORD size = 0;
    EXPECT_EQ(ini.Set("s", "k", "b", 1) + ini.Get("s", "k", nullptr, &size), 0);
    EXPECT_EQ(ini.Delete("s") + ini.Backup("2") + ini.Restore("2"), 0);
}

TEST(PrivateProfile, ListsSectionsUpTo32764Bytes) {
    const TempFolder folder;
    Profile ini(folder.Path("a.ini"));
    CStringArray lines;
    for (const auto& [bytes, result] : {std::pair{32764, 1}, std::pair{32765, 0}, std::pair{40000, 0}}) {
        folder.Write("a.ini", "[s]\n" + std::string(static_cast<std::size_t>(bytes - 1), 'x'));
        EXPECT_EQ(ini.GetAllStrings("s", lines), result) << bytes;
        ASSERT_EQ(lines.GetSize(), 1);
        EXPECT_EQ(lines[0].GetLength(), 32763);
    }
}

TEST_F(RegistryProfile, OpensOnTheNameOfARoot) {
    ASSERT_EQ(m_profile.Set("S", "k", "v"), 1);
    for (const char* location : {"hkey_current_user\\SOFTWARE\\meter\\", "HKEY_CURRENT_USER/Software\\\\Meter"}) {
        EXPECT_EQ(Profile(location, 1).Get("s\\", "k", "d"), "v") << location;
    }
    EXPECT_EQ(Profile("HKEY_CURRENT_USER\\Software\\Meter\\S", 1).Get(nullptr, "k", "d"), "v");
    for (const char* location : {"HKEY_LOCAL_MACHINE\\Software\\Meter", "HKEY_CLASSES_ROOT\\Software\\Meter"}) {
        EXPECT_EQ(Profile(location, 1).Get("S", "k", "d"), "d") << location;
    }
    for (const char* location : {"HKEY_USERS\\a", "HKEY_CURRENT_USER", "", "a.ini"}) {
        Profile profile(location, 1);
        DWORD size = 0;
        CStringArray lines;
        EXPECT_EQ(profile.Set("S", "k", "v") + profile.Set("S", "k", 1) + profile.Set("S", "k", "b", 1), 0) << location;
        EXPECT_EQ(profile.Get("S", "k", nullptr, &size) + profile.Delete("S") + profile.Delete(nullptr), 0) << location;
        EXPECT_EQ(profile.Backup("2") + profile.Restore("2") + profile.GetAllStrings("S", lines), 0) << location;
    }
    Profile japanese("HKEY_CURRENT_USER\\\x83\x5C", 1);  // its second byte is no separator
    EXPECT_EQ(japanese.Set("S", "k", "v"), 1);
    EXPECT_EQ(Profile("HKEY_CURRENT_USER", 1).Get("\x83\x5C\\S", "k", "d"), "d");
    EXPECT_EQ(Profile("HKEY_CURRENT_USER\\\x83\x5C\\S", 1).Get(nullptr, "k", "d"), "v");

    qel::SetSystemFamily(qel::SystemFamily::Win95);  // the backslash at the end goes, in any case one
    EXPECT_EQ(m_profile.Get("S\\", "k", "d"), "v");
    EXPECT_EQ(m_profile.Get("", "k", "d"), "d");
    EXPECT_EQ(m_profile.Delete("S\\"), 1);
    qel::SetSystemFamily(qel::SystemFamily::Nt);
}

TEST_F(RegistryProfile, KeepsTypes) {
    const std::string bytes("a\0b", 3);
    EXPECT_EQ(m_profile.Set("S", "bytes", bytes.data(), 3) + m_profile.Set("S", "none", nullptr, 0), 2);
    EXPECT_EQ(m_profile.Set("S", "none", nullptr, 1) + m_profile.Set("S", "text", kNone), 0);
    EXPECT_EQ(m_profile.Set("S", "text", "12") + m_profile.Set("S", "number", 0x41424344), 2);
    EXPECT_EQ(m_profile.Set("S", kNone, "default value"), 1);
    EXPECT_EQ(m_profile.Set("S", "long", std::string(1024, 'x').c_str()), 1);
    struct Case {
        const char *key, *bytes;
        DWORD size;
        const char* text;
        int number;
    };
    const Case cases[] = {{"bytes", "a\0b", 3, "d", 7},     {"none", "", 0, "d", 7},
                          {"text", "12", 2, "12", 7},       {"number", "DCBA", 4, "d", 0x41424344},
                          {"", "", 13, "default value", 7}, {"long", "", 1024, "d", 7}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(m_profile.Get("S", c.key, "d"), c.text);
        EXPECT_EQ(m_profile.Get("S", c.key, 7), c.number);
        char buffer[9] = {};
        DWORD size = sizeof buffer;
        EXPECT_EQ(m_profile.Get("S", c.key, buffer, &size), c.size <= 9 ? 1 : 0);
        EXPECT_EQ(size, c.size);
        EXPECT_EQ(std::string(buffer), c.size <= 9 ? c.bytes : "");
        size = 0;
        EXPECT_EQ(m_profile.Get("S", c.key, nullptr, &size), 1);
        EXPECT_EQ(size, c.size);
    }
    EXPECT_EQ(m_profile.Get("S", "bytes", nullptr, nullptr), 0);
}

TEST_F(RegistryProfile, BacksUpAndRestoresTheWholeTree) {
    EXPECT_EQ(m_profile.Backup("2") + m_profile.Restore("2") + m_profile.Delete("S"), 0);  // there is nothing yet
    EXPECT_EQ(m_registry.Folder().Count(), 0);
    m_profile.Set(nullptr, "k", "root");
    m_profile.Set("A\\B", "k", 1);
    EXPECT_EQ(m_profile.Restore("2"), 0);  // no backup: what is live stays
    EXPECT_EQ(m_profile.Backup("2"), 1);
    m_profile.Set("A\\B", "k", 2);
    m_profile.Set("C", "k", "new");
    for (const char* suffix : {"", "\\", "\\below", kNone}) {
        EXPECT_EQ(m_profile.Backup(suffix) + m_profile.Restore(suffix), 0);
    }
    EXPECT_EQ(m_profile.Get("A\\B", "k", 0), 2);
    EXPECT_EQ(m_profile.Restore("2"), 1);
    EXPECT_EQ(m_profile.Get(nullptr, "k", "d"), "root");
    EXPECT_EQ(m_profile.Get("A\\B", "k", 0), 1);
    EXPECT_EQ(m_profile.Get("C", "k", "gone"), "gone");

    Profile backup("HKEY_CURRENT_USER\\Software\\Meter2", 1);
    EXPECT_EQ(backup.Get("A\\B", "k", 0), 1);
    EXPECT_EQ(backup.Delete("a"), 1);
    EXPECT_EQ(backup.Delete("a"), 0);
    EXPECT_EQ(backup.Get(nullptr, "k", "d"), "root");
    m_profile.Set("A", "late", 1);
    EXPECT_EQ(m_profile.Backup("2"), 1);  // in place of the old one
    EXPECT_EQ(backup.Get("A", "late", 0), 1);
    EXPECT_EQ(m_profile.Delete(nullptr), 1);
    EXPECT_EQ(m_profile.Restore("2"), 1);  // also where nothing is live
    EXPECT_EQ(m_profile.Get("A", "late", 0), 1);

    EXPECT_EQ(m_profile.DeleteKeySub(HKEY_CURRENT_USER, "missing"), -1);
    EXPECT_EQ(m_profile.DeleteKeySub(HKEY_CURRENT_USER, ""), qel::kRegistryAccessDenied);
    EXPECT_EQ(m_profile.DeleteKeySub(HKEY_CURRENT_USER, "Software\\"), 0);
    EXPECT_EQ(m_profile.BackupSub(HKEY_CURRENT_USER, HKEY_CURRENT_USER), 0);
}

TEST_F(RegistryProfile, AndIniFilesStayWholeWhenTheDiskIsFull) {
    Profile ini(m_registry.Folder().Path("a.ini"));
    for (Profile* profile : {&ini, &m_profile}) {
        ASSERT_EQ(profile->Set("S", "k", "v"), 1);
        const auto fail = [&] {
            const rlimit limit = {4000, 4000};  // bytes of a file, in place of a disk
            std::signal(SIGXFSZ, SIG_IGN);
            ::setrlimit(RLIMIT_FSIZE, &limit);
            return profile->Set("S", "k", std::string(5000, 'x').c_str());
        };
        EXPECT_EQ(InChild(fail), 0);
        EXPECT_EQ(profile->Get("S", "k", "d"), "v");
        EXPECT_EQ(profile->Set("S", "k", "w"), 1);
    }
    EXPECT_EQ(m_registry.Folder().Count(), 2);
}

// At every moment the tree is one of two, whole: all values 0, or all 1.
TEST_F(RegistryProfile, KilledAtAnyMomentLeavesTheOldTreeOrTheNewOne) {
    constexpr int kValues = 30;
    const auto setAll = [&](int value) {
        for (int i = 0; i < kValues; ++i) m_profile.Set(SectionOf(i), i, value);
    };
    setAll(0);
    ASSERT_EQ(m_profile.Backup("0"), 1);
    setAll(1);
    ASSERT_EQ(m_profile.Backup("1"), 1);
    std::mt19937 random(1);
    int interrupted = 0;
    for (int kill = 0; kill < 40; ++kill) {
        {
            ChildProcess child([&] {
                for (int i = 0;; ++i) {
                    if (m_profile.Restore(i % 2 == 0 ? "0" : "1") != 1) return 1;
                    m_profile.Set("Beside", "k", i);
                }
            });
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 30000));
        }
        interrupted += m_registry.Folder().Has("current-user.db-journal");
        const int first = m_profile.Get(SectionOf(0), 0, -1);
        ASSERT_TRUE(first == 0 || first == 1);
        for (int i = 1; i < kValues; ++i) ASSERT_EQ(m_profile.Get(SectionOf(i), i, -1), first);
        ASSERT_EQ(m_profile.Set("Beside", "usable", kill), 1);
    }
    EXPECT_GT(interrupted, 0) << "no kill came in the middle of a write";
}
