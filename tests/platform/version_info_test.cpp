#include "qellib10/platform/shell/version_info.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "../support/temp_folder.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

// FileVersion stands in both languages, in the order that Translation gives; others only in one.
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

// A Windows library with nothing in it but that resource, made by the tools for the other system.
std::string Library(const std::string& tools) {
    const TempFolder folder;
    folder.Write("v.rc", kResource);
    const std::string command = "cd " + folder.Posix().string() + " && " + tools +
                                "windres --preprocessor=cat v.rc v.o && " + tools + "ld --dll -s -o v.dll v.o";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return folder.Read("v.dll");
}

std::optional<CString> TextIn(const std::string& bytes, const char* key) {
    const std::vector<BYTE> exact(bytes.begin(), bytes.end());  // so that a sanitizer sees each byte beyond
    CMemFile file;
    file.Attach(exact.data(), static_cast<UINT>(exact.size()));
    try {
        return qel::VersionText(file, key);
    } catch (const qel::DataError&) {
        return std::nullopt;
    }
}

// Whatever was done to a file: an answer depends on nothing behind its end, nor on the case of the key.
void Damage(const std::string& whole) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\0', '\xFF', '\x80', static_cast<char>(whole[at] ^ 1)}) {
            std::string damaged = whole;
            damaged[at] = byte;
            const auto text = TextIn(damaged, "FileVersion");
            EXPECT_TRUE(!text || TextIn(damaged + "more", "fileVERSION") == text) << at;
        }
    }
}

}  // namespace

TEST(VersionText, OfWindowsFiles) {
    for (const char* tools : {"x86_64-w64-mingw32-", "i686-w64-mingw32-"}) {
        const std::string library = Library(tools);
        EXPECT_EQ(TextIn(library, "FILEVersion"), CString("1.2.3.4")) << tools;
        EXPECT_EQ(TextIn(library, "ProductName"), CString("\x95\x5C\x8E\xA6"));
        EXPECT_EQ(TextIn(library, "Empty"), CString(""));
        EXPECT_EQ(TextIn(library, "OnlyEnglish"), CString("yes"));
        for (const char* key : {"None", "", "VarFileInfo"}) EXPECT_EQ(TextIn(library, key), std::nullopt) << key;
        Damage(library);
    }
}

// A header, a segment of notes, in it one of the linker's and ours: no text for Odd, 7 for FileVersion.
TEST(VersionText, OfNotes) {
    std::ifstream file(QELLIB10_TEST_DATA "/../../fuzz/seeds/version/program", std::ios::binary);
    const std::string program(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(TextIn(program, "fileversion"), CString("7"));
    EXPECT_EQ(TextIn(program, "Odd"), CString(""));
    EXPECT_EQ(TextIn(program, "None"), std::nullopt);
    EXPECT_EQ(TextIn(program.substr(0, 150), "FileVersion"), std::nullopt);
    Damage(program);
}
