#include "qellib10/file/private_profile.h"

#include <atomic>
#include <cmath>
#include <random>

#include "../support/full_disk.h"
#include "../support/registry_scope.h"
#include "../support/test.h"
#include "qellib10/runtime/system_info.h"

// How many of the operations compile; a floating-point key or number would be cut to an int without a word.
// clang-format off
template <typename Key, typename Value> constexpr int kForms =
    requires(CPrivateProfile profile, Key key, Value value) { profile.Set("", key, value); } +
    requires(CPrivateProfile profile, Key key, Value value) { profile.Get("", key, value); };
// clang-format on
static_assert(kForms<const char*, int> == 2 && kForms<CString, unsigned> == 2 && kForms<int, long> == 2);
static_assert(kForms<DWORD, DWORD> == 2 && kForms<const char*, const char*> == 2 && kForms<short, CString> == 2);
static_assert(kForms<const char*, double> == 0 && kForms<CString, float> == 0 && kForms<int, long double> == 0);
static_assert(kForms<double, int> == 0 && kForms<float, const char*> == 0);
static_assert(kForms<const char*, std::atomic<double>&> == 0 && kForms<const char*, std::atomic<int>&> == 2);
// clang-format off
template <typename Key> constexpr int kDoubleForms =
    requires(CPrivateProfile profile, Key key) { profile.SetDouble("", key, 1.5); } +
    requires(CPrivateProfile profile, Key key) { profile.GetDouble("", key, 1.5); };
// clang-format on
static_assert(kDoubleForms<int> == 2 && kDoubleForms<CString> == 2 && kDoubleForms<double> == 0);

namespace {

constexpr const char* kNone = nullptr;
constexpr const char* kPlace = "HKEY_CURRENT_USER\\Software\\Meter";
const std::string kLongest(1023, 'x');

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

}  // namespace

TEST_F(RegistryProfile, AndIniFilesGiveBackWhatWasSet) {
    for (const int mode : {0, 7, 1}) {
        SCOPED_TRACE(mode);
        const CString file = m_registry.Folder().Path(std::to_string(mode));
        Profile profile(mode == CPrivateProfile::registryMode ? kPlace : static_cast<const char*>(file), mode);
        EXPECT_EQ(Line({profile.Get("S", "k", "d"), profile.Get("S", "k", nullptr)}), "d ");
        for (const char* text : {"", "\x83\x5C \x95\x5C=", "12abc", kLongest.c_str()}) {
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
        EXPECT_EQ(Line({profile.Close(), profile.Set("S", "k", "after")}), "1 0");
        EXPECT_EQ(profile.Get("S", "k", "d  "), "d  ");
        EXPECT_EQ(copy.Get("S", "k", "d"), kLongest.c_str());
    }
}

TEST_F(RegistryProfile, AndIniFilesKeepEveryDigitOfADouble) {
    // clang-format off
    const Cases<double, const char*> numbers = {
        {1.006, "1.006"},
        {-0.1, "-0.1"},
        {100000, "100000"},
        {0.1 + 0.2, "0.30000000000000004"},
        {-0.0, "-0"},
        {0.0001, "0.0001"},
        {1e23, "1e+23"},
        {5e-324, "5e-324"},
    };
    const Cases<const char*, double> texts = {
        {" 1,006 ", 1.006},
        {"1.5e2", 150},
        {"12abc", 7},
        {"inf", 7},
        {"", 7},
        {kLongest.c_str(), 7},
    };
    // clang-format on
    for (const int mode : {CPrivateProfile::iniMode, CPrivateProfile::registryMode}) {
        SCOPED_TRACE(mode);
        const CString file = m_registry.Folder().Path("double.ini");
        Profile profile(mode == CPrivateProfile::registryMode ? kPlace : static_cast<const char*>(file), mode);
        for (const auto& [number, text] : numbers) {
            EXPECT_EQ(profile.SetDouble("Titrant", "Factor", number), 1);
            EXPECT_EQ(profile.Get("Titrant", "Factor", ""), text);
            EXPECT_EQ(profile.GetDouble("titrant", "FACTOR", 7), number);
        }
        EXPECT_EQ(profile.SetDouble("Titrant", "Factor", HUGE_VAL), 0);
        EXPECT_EQ(profile.SetDouble("Titrant", "Factor", NAN), 0);
        EXPECT_EQ(profile.GetDouble("Titrant", "Factor", 7), 5e-324);
        for (const auto& [text, number] : texts) {
            EXPECT_EQ(profile.Set("Titrant", "Typed", text), 1);
            EXPECT_EQ(profile.GetDouble("Titrant", "Typed", 7), number) << text;
        }
        EXPECT_EQ(profile.Set("Titrant", "Count", -3), 1);
        EXPECT_EQ(profile.GetDouble("Titrant", "Count", 7), -3);
        EXPECT_EQ(profile.GetDouble("Titrant", "missing", 7), 7);
        EXPECT_EQ(profile.SetDouble("Titrant", 0, 0.5), 1);  // the key "0", not a null one
        EXPECT_EQ(profile.GetDouble("Titrant", 0, 7), 0.5);
        EXPECT_EQ(profile.Get("Titrant", "0", ""), "0.5");
        // All of an INI file's section, whose first name is a number here; the registry's default value.
        const bool isRegistry = mode == CPrivateProfile::registryMode;
        EXPECT_EQ(profile.Set("Null", "12", "x"), 1);
        EXPECT_EQ(profile.SetDouble("Null", kNone, 0.5), isRegistry ? 1 : 0);
        EXPECT_EQ(profile.GetDouble("Null", kNone, 7), isRegistry ? 0.5 : 7);
        EXPECT_EQ(profile.Get("Null", "12", ""), "x");
    }
}

TEST(PrivateProfile, ReadsIniTextAsThePlatformDoes) {
    const TempFolder folder;
    folder.Write("a.ini", "[s]\nnumber=12abc\nempty=\nword=abc\nblank= +5 \nhuge=99999999999\nminus=- 5\nlong=x" +
                              kLongest + "\n");
    Profile ini(folder.Path("a.ini"));
    for (const auto& [key, number, text] : Cases<const char*, int, const char*>{
             {"number", 12, "12abc"},
             {"empty", 7, "d  "},
             {"word", 0, "abc"},
             {"blank", 5, "+5"},
             {"huge", 2147483647, "99999999999"},
             {"minus", 0, "- 5"},
             {"missing", 7, "d"},
             {"long", 0, kLongest.c_str()},
             {kNone, 0, "number"},
         }) {
        EXPECT_EQ(ini.Get("s", key, 7), number) << text;
        EXPECT_EQ(ini.Get("s", key, "d  "), text);
    }
    EXPECT_EQ(Line({ini.Set("s", "word", 42), ini.Set("s", "number", kNone), ini.Set(nullptr, "k", "v")}), "1 1 0");
    CStringArray lines;
    lines.Add("old");
    EXPECT_EQ(ini.GetAllStrings("S", lines), 1);
    ASSERT_EQ(lines.GetSize(), 6);
    EXPECT_EQ(lines[1], "word=42");
    EXPECT_EQ(Profile(folder.Path()).GetAllStrings("s", lines), 0) << "a folder cannot be read";
    EXPECT_EQ(lines.GetSize(), 6);
    EXPECT_EQ(Line({ini.GetAllStrings("missing", lines), Profile(folder.Path("none")).GetAllStrings("s", lines)}),
              "1 1");
    EXPECT_EQ(lines.GetSize(), 0);
    for (const auto& [bytes, result] : {
             std::pair{32764, 1},
             std::pair{32765, 0},
             std::pair{40000, 0},
         }) {
        folder.Write("a.ini", "[s]\n" + std::string(static_cast<std::size_t>(bytes - 1), 'x'));
        EXPECT_EQ(ini.GetAllStrings("s", lines), result) << bytes;
        ASSERT_EQ(lines.GetSize(), 1);
        EXPECT_EQ(lines[0].GetLength(), 32763);
    }
    EXPECT_EQ(ini.Set("s", kNone, "v"), 1);
    EXPECT_EQ(folder.Read("a.ini"), "");

    DWORD size = 0;
    EXPECT_EQ(Line({ini.Set("s", "k", "b", 1), ini.Get("s", "k", nullptr, &size)}), "0 0");
    EXPECT_EQ(Line({ini.Delete("s"), ini.Backup("2"), ini.Restore("2")}), "0 0 0");
}

TEST_F(RegistryProfile, OpensOnTheNameOfARoot) {
    ASSERT_EQ(m_profile.Set("S", "k", "v"), 1);
    const Cases<const char*, const char*, const char*> cases = {{"hkey_current_user\\SOFTWARE\\meter\\", "s\\", "v"},
                                                                {"HKEY_CURRENT_USER/Software\\\\Meter", "S", "v"},
                                                                {"HKEY_CURRENT_USER\\Software\\Meter\\S", kNone, "v"},
                                                                {"HKEY_LOCAL_MACHINE\\Software\\Meter", "S", "d"},
                                                                {"HKEY_CLASSES_ROOT\\Software\\Meter", "S", "d"}};
    for (const auto& [location, section, text] : cases)
        EXPECT_EQ(Profile(location, 1).Get(section, "k", "d"), text) << location;
    for (const char* location : {"HKEY_USERS\\a", "HKEY_CURRENT_USER", "", "a.ini"}) {
        SCOPED_TRACE(location);
        Profile profile;
        EXPECT_EQ(profile.Open(location, 1), std::string(location) == "HKEY_CURRENT_USER");
        DWORD size = 0;
        CStringArray lines;
        EXPECT_EQ(Line({profile.Set("S", "k", "v"), profile.Set("S", "k", 1), profile.Set("S", "k", "b", 1)}), "0 0 0");
        EXPECT_EQ(Line({profile.Get("S", "k", nullptr, &size), profile.Delete("S"), profile.Delete(nullptr)}), "0 0 0");
        EXPECT_EQ(Line({profile.Backup("2"), profile.Restore("2"), profile.GetAllStrings("S", lines)}), "0 0 0");
    }
    EXPECT_EQ(Profile("HKEY_CURRENT_USER\\\x83\x5C", 1).Set("S", "k", "v"), 1);  // the second byte is not a separator
    EXPECT_EQ(Profile("HKEY_CURRENT_USER\\\x83\x5C\\S", 1).Get(nullptr, "k", "d"), "v");

    qel::SetSystemFamily(qel::SystemFamily::Win95);  // the backslash at the end goes, in any case one
    EXPECT_EQ(m_profile.Get("S\\", "k", "d"), "v");
    EXPECT_EQ(m_profile.Get("", "k", "d"), "d");
    EXPECT_EQ(m_profile.Delete("S\\"), 1);
    qel::SetSystemFamily(qel::SystemFamily::Nt);
}

TEST_F(RegistryProfile, ValuesAreReadAsTheTypeThatWasSet) {
    const std::string bytes("a\0b", 3);
    EXPECT_EQ(Line({m_profile.Set("S", "bytes", bytes.data(), 3), m_profile.Set("S", "none", nullptr, 0)}), "1 1");
    EXPECT_EQ(Line({m_profile.Set("S", "none", nullptr, 1), m_profile.Set("S", "text", kNone)}), "0 0");
    EXPECT_EQ(m_profile.Set("S", "none", "", 0xFFFFFFFF), 0);  // more than a value holds: nothing of it is read
    EXPECT_EQ(Line({m_profile.Set("S", "text", "12"), m_profile.Set("S", "number", 0x41424344)}), "1 1");
    EXPECT_EQ(Line({m_profile.Set("S", kNone, "default value"), m_profile.Set("S", "long", ('x' + kLongest).c_str())}),
              "1 1");
    qel::WriteRegistryValue(HKEY_CURRENT_USER, "Software\\Meter\\S", "", "ended", {REG_SZ, kLongest + '\0'});
    for (const auto& [key, start, length, text, number] : Cases<const char*, const char*, DWORD, const char*, int>{
             {"bytes", "a\0b", 3, "d", 7},
             {"none", "", 0, "d", 7},
             {"text", "12", 2, "12", 7},
             {"number", "DCBA", 4, "d", 0x41424344},
             {"", "", 13, "default value", 7},
             {"long", "", 1024, "d", 7},
             {"ended", "", 1024, kLongest.c_str(), 7},
         }) {
        SCOPED_TRACE(key);
        EXPECT_EQ(m_profile.Get("S", key, "d"), text);
        EXPECT_EQ(m_profile.Get("S", key, 7), number);
        char buffer[9] = {};
        DWORD size = sizeof buffer;
        EXPECT_EQ(m_profile.Get("S", key, buffer, &size), length <= sizeof buffer);
        EXPECT_EQ(size, length);
        EXPECT_STREQ(buffer, start);
        size = 0;
        EXPECT_EQ(m_profile.Get("S", key, nullptr, &size), 1);
        EXPECT_EQ(size, length);
    }
    EXPECT_EQ(m_profile.Get("S", "bytes", nullptr, nullptr), 0);
}

TEST_F(RegistryProfile, BacksUpAndRestoresTheWholeTree) {
    EXPECT_EQ(Line({m_profile.Backup("2"), m_profile.Restore("2"), m_profile.Delete("S")}),
              "0 0 0");  // there is nothing yet
    EXPECT_EQ(m_registry.Folder().Count(), 0);
    m_profile.Set(nullptr, "k", "root");
    m_profile.Set("A\\B", "k", 1);
    EXPECT_EQ(m_profile.Restore("2"), 0);  // no backup: what is live stays
    EXPECT_EQ(m_profile.Backup("2"), 1);
    m_profile.Set("A\\B", "k", 2);
    m_profile.Set("C", "k", "new");
    for (const char* suffix : {"", "\\", "\\below", kNone})
        EXPECT_EQ(Line({m_profile.Backup(suffix), m_profile.Restore(suffix)}), "0 0");
    EXPECT_EQ(m_profile.Get("A\\B", "k", 0), 2);
    EXPECT_EQ(m_profile.Restore("2"), 1);
    EXPECT_EQ(Line({m_profile.Get(nullptr, "k", "d"), m_profile.Get("C", "k", "gone")}), "root gone");
    EXPECT_EQ(m_profile.Get("A\\B", "k", 0), 1);

    Profile backup("HKEY_CURRENT_USER\\Software\\Meter2", 1);
    EXPECT_EQ(backup.Get("A\\B", "k", 0), 1);
    EXPECT_EQ(Line({backup.Delete("a"), backup.Delete("a")}), "1 0");
    EXPECT_EQ(backup.Get(nullptr, "k", "d"), "root");
    m_profile.Set("A", "late", 1);
    EXPECT_EQ(Line({m_profile.Backup("2"), m_profile.Delete(nullptr)}), "1 1");  // in place of the old one
    EXPECT_EQ(m_profile.Restore("2"), 1);                                        // also where nothing is live
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
        EXPECT_EQ(OnFullDisk(4000, [&] { return profile->Set("S", "k", std::string(5000, 'x').c_str()); }), 0);
        EXPECT_EQ(profile->Get("S", "k", "d"), "v");
        EXPECT_EQ(profile->Set("S", "k", "w"), 1);
    }
    EXPECT_EQ(m_registry.Folder().Count(), 2);
}

// At every moment the tree is one of two, whole: all values 0, or all 1.
TEST_F(RegistryProfile, KilledAtAnyMomentLeavesTheOldTreeOrTheNewOne) {
    constexpr int kValues = 30;
    const auto section = [](int i) { return "S\\" + std::to_string(i % 3); };
    for (const char* suffix : {"0", "1"}) {
        for (int i = 0; i < kValues; ++i) m_profile.Set(section(i).c_str(), i, *suffix - '0');
        ASSERT_EQ(m_profile.Backup(suffix), 1);
    }
    std::minstd_rand random(SoakSeed());
    int interrupted = 0;
    for (int kill = SoakCount(40); kill > 0; --kill) {
        {
            ChildProcess child([&] {
                for (int i = 0;; ++i) {
                    if (m_profile.Restore(i % 2 == 0 ? "0" : "1") != 1) return 1;
                    m_profile.Set("Beside", "k", i);
                }
            });
            ::usleep(static_cast<useconds_t>(random() % 30000));
        }
        interrupted += m_registry.Folder().Has("current-user.db-journal");
        const int first = m_profile.Get(section(0).c_str(), 0, -1);
        ASSERT_TRUE(first == 0 || first == 1);
        for (int i = 1; i < kValues; ++i) ASSERT_EQ(m_profile.Get(section(i).c_str(), i, -1), first);
        ASSERT_EQ(m_profile.Set("Beside", "usable", kill), 1);
    }
    EXPECT_GT(interrupted, 0) << "no kill came in the middle of a write";
}
