#include "../support/test.h"
#include "qellib10/file/q_file.h"
#include "qellib10/runtime/system_info.h"

namespace {

struct Opened : CQFile {
    using CQFile::Append;
};

// Each case reads "argument -> result". 95 5C, 83 5C and 83 7C are characters that end with the byte of a backslash or
// a bar.
void Expect(CString (*operation)(const char*), std::initializer_list<std::string> cases) {
    for (const std::string& text : cases) {
        const std::size_t arrow = text.find(" -> ");
        EXPECT_EQ(operation(text.substr(0, arrow).c_str()), text.substr(arrow + 4).c_str()) << text;
    }
}

}  // namespace

TEST(FilePath, IsBuiltWithOneSeparator) {
    const auto folder = [](const char* name) { return CQFile::BuildFilePath(name, "a.txt"); };
    Expect(folder, {" -> a.txt", "d -> d\\a.txt", "d\\ -> d\\a.txt", "d/ -> d/\\a.txt", "\x95\x5C -> \x95\x5C\\a.txt"});
    Expect([](const char* name) { return CQFile::BuildFileName(name, "txt"); }, {" -> ", "a -> a.txt", "a. -> a.txt"});
    Expect([](const char* a) { return Opened::Append(a, "x", '\\'); }, {" -> \\x", "\x95\x5C -> \x95\x5C\\x"});
    EXPECT_EQ(CQFile::BuildFileName("a", nullptr), "a.");
}

TEST(FilePath, PartsEndAtBackslashesAndDots) {
    Expect(CQFile::GetFilenameFromPath, {"d\\e/f -> e/f", "dir/file -> file", "file -> file", "d\\ -> ",
                                         "\x83\x5C\\\x95\x5C.txt -> \x95\x5C.txt", "\x95\x5C -> \x95\x5C"});
    Expect(CQFile::GetFolderFromPath,
           {"d\\e\\f -> d\\e", "dir/file -> dir/file", "\\f -> ", "\x83\x5C\\\x95\x5C.txt -> \x83\x5C"});
    Expect(CQFile::GetFileExt,
           {"a.tar.gz -> gz", "README -> README", ".profile -> .profile", ". -> .", "a. -> ", ".. -> ", " -> "});
    Expect(CQFile::GetFileShortExt,
           {"a.htm -> htm", "a.html -> ", "README -> ", ".abc -> ", "a. -> ", "a.b.c -> c", " -> "});
    Expect(CQFile::DeleteFileExt, {"a.tar.gz -> a.tar", ".profile -> .profile", "dir.d/name -> dir.d/name",
                                   "dir.d\\name -> dir", "d/.profile -> d/", "name -> name"});
    EXPECT_EQ(CQFile::GetFilenameFromPath(nullptr), "");
}

TEST(FilePath, ANameHasNoSeparatorOrWildcard) {
    for (const char* name : {"a\\b", "a/b", "a:b", "a,b.txt", "a;b", "a*", "?", "\"", "<", ">", "a|"})
        EXPECT_EQ(CQFile::IsCorrectFilename(name), 0) << name;
    for (const char* name : {"a.txt", "\x95\x5C", "\x83\x7C", ""}) EXPECT_EQ(CQFile::IsCorrectFilename(name), 1);
    for (const auto& [name, dots] : {
             std::pair(".", 1),
             {"..", 1},
             {"...", 0},
             {"", 0},
         })
        EXPECT_EQ(CQFile::IsDots(name), dots) << name;
}

TEST(FilePlace, IsThatOfTheSystemOrTheModule) {
    const TempFolder folder;
    const EnvironmentScope temporary("TMPDIR", folder.Posix().c_str());
    EXPECT_EQ(CQFile::GetTempFolder(), folder.Path() + '\\');
    EXPECT_EQ(CQFile::GetFolderFromPath(CQFile::GetTempFilePath(nullptr)), folder.Path());
    EXPECT_EQ(folder.Count(), 1);
    EXPECT_EQ(CQFile::GetTempFilename(folder.Path("none"), "a"), "");

    const CString program = CQFile::GetModuleFilePath(nullptr);
    EXPECT_EQ(program, CQFile::GetModuleFolder(nullptr) + "\\file_tests");
    EXPECT_EQ(CQFile::GetModuleIniFile(nullptr), program + ".ini");
    const auto library = reinterpret_cast<HINSTANCE>(&std::free);
    EXPECT_EQ(CQFile::GetModuleIniFile(library), CQFile::DeleteFileExt(CQFile::GetModuleFilePath(library)) + ".ini");

    const EnvironmentScope config("XDG_CONFIG_HOME", "/c"), folders("XDG_CONFIG_DIRS", "rel:/d:/e");
    EXPECT_EQ(Line({CQFile::GetStartupFolder(0), CQFile::GetAppDataFolder()}), R"(\c\autostart \c\)");
    for (const auto& [family, common] : Cases<qel::SystemFamily, const char*>{
             {qel::SystemFamily::Win95, "\\c\\autostart"},
             {qel::SystemFamily::Nt, "\\d\\autostart"},
         }) {
        qel::SetSystemFamily(family);
        EXPECT_EQ(CQFile::GetStartupFolder(1), common);
    }
}
