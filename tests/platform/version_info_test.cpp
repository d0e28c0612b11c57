#include "qellib10/platform/shell/version_info.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "../support/test.h"
#include "../support/version_law.h"

namespace {

// FileVersion is in both languages, in the order that Translation gives; others only in one.
constexpr const char* kResource = R"(1 VERSIONINFO
FILEVERSION 1,2,3,4
BEGIN
  BLOCK "StringFileInfo"
  BEGIN
    BLOCK "040904e4" BEGIN VALUE "FileVersion", "9.9" VALUE "OnlyEnglish", "yes" END
    BLOCK "041104B0" BEGIN VALUE "FileVersion", "1.2.3.4" VALUE "ProductName", L"\x8868\x793A" VALUE "Empty", "" END
  END
  BLOCK "VarFileInfo" BEGIN VALUE "Translation", 0x411, 1200, 0x409, 1252 END
END
)";

void Damage(const std::string& whole) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\0', '\xFF', '\x80', static_cast<char>(whole[at] ^ 1)}) {
            std::string damaged = whole;
            damaged[at] = byte;
            EXPECT_TRUE(SaysTheSameWithMoreAfter(damaged)) << at;
        }
    }
}

}  // namespace

TEST(VersionText, OfWindowsFilesIsFoundInAnyLanguage) {
    // clang-format off
    const Cases<const char*, std::optional<CString>> texts = {
        {"FILEVersion", "1.2.3.4"},
        {"ProductName", "\x95\x5C\x8E\xA6"},
        {"Empty", ""},
        {"OnlyEnglish", "yes"},
        {"None", std::nullopt},
        {"VarFileInfo", std::nullopt},
    };
    // clang-format on
    const TempFolder folder;
    folder.Write("v.rc", kResource);
    for (const std::string tools : {"x86_64-w64-mingw32-", "i686-w64-mingw32-"}) {
        const std::string command = "cd " + folder.Posix().string() + " && " + tools +
                                    "windres --preprocessor=cat v.rc v.o && " + tools + "ld --dll -s -o v.dll v.o";
        ASSERT_EQ(std::system(command.c_str()), 0);
        const std::string library = folder.Read("v.dll");
        for (const auto& [key, text] : texts) EXPECT_EQ(TextIn(library, key), text) << tools << key;
        Damage(library);
    }
}

// A header, a segment of notes, in it one of the linker's and ours: no text for Odd, 7 for FileVersion.
TEST(VersionText, OfNotesIsThatOfOurNote) {
    std::ifstream file(QELLIB10_TEST_DATA "/../../fuzz/seeds/version/program", std::ios::binary);
    const std::string program(std::istreambuf_iterator<char>(file), {});
    const Cases<const char*, std::optional<CString>> texts = {
        {"fileversion", "7"},
        {"Odd", ""},
        {"None", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [key, text] : texts) EXPECT_EQ(TextIn(program, key), text) << key;
    EXPECT_EQ(TextIn(program.substr(0, 150), "FileVersion"), std::nullopt);
    Damage(program);
}
