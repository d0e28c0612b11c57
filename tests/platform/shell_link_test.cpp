#include "qellib10/platform/shell/shell_link.h"

#include <algorithm>

#include "../support/file_error_code.h"
#include "../support/output_of.h"
#include "../support/test.h"
#include "qellib10/platform/storage/make_folders.h"

namespace {

// What a program prints, blanks and tabs in one piece each.
std::string Output(const std::string& command) { return OutputOf(command + " | tr -s '\\t ' ' '"); }

std::string Quoted(const std::filesystem::path& path) { return std::string(1, '\'').append(path).append(1, '\''); }

}  // namespace

TEST(ShellLink, IsReadByAnotherProgram) {
    const TempFolder folder;
    folder.Write("能力.txt", "12345");
    for (const auto& [target, expected] : Cases<const char*, const char*>{
             {"能力.txt", "File size : 5 "},
             {"none", "Access time : Not set"},
         }) {
        qel::WriteShellLink(folder.Path(target).View(), folder.Path("link").View(), CString("\x95\x5C\x8E\xA6 x"));
        const std::string read = Output("lnkinfo -c windows-932 " + Quoted(folder.Posix("link.lnk")));
        std::string path = folder.Posix(target).string();
        std::ranges::replace(path, '/', '\\');
        for (const std::string& line : {"Local path : " + path + "\n", std::string("Description : 表示 x\n"),
                                        std::string(expected), std::string("flags : 0x00000020")})
            EXPECT_NE(read.find(line), read.npos) << line << read;
    }
    qel::WriteShellLink(folder.Path().View(), folder.Path("link").View(), CString('d', 300));
    const std::string read = Output("lnkinfo " + Quoted(folder.Posix("link.lnk")));
    EXPECT_NE(read.find("flags : 0x00000010"), read.npos) << read;
    EXPECT_NE(read.find(" " + std::string(259, 'd') + "\n"), read.npos) << read;
}

TEST(ShellLink, HasAnEntryWhereTheDesktopLooks) {
    const TempFolder folder;
    const EnvironmentScope config("XDG_CONFIG_HOME", folder.Posix("c").c_str());
    const EnvironmentScope data("XDG_DATA_HOME", folder.Posix("d").c_str());
    const EnvironmentScope home("HOME", folder.Posix("h").c_str());
    for (const char* path : {"d/applications", "h/Tisch", "c"}) qel::MakeFolders(folder.Path(path).View());
    folder.Write("c/user-dirs.dirs", "# x\nXDG_DESKTOP_DIR=\"$HOME/Tisch\"\n");
    folder.Write("a document", "");
    const CString comment = " x\\y" + CString('z', 20'000);  // longer than what is read to see that an entry is ours
    for (const auto& [target, file, expected] : Cases<const char*, std::string, const char*>{
             {"none", "c/autostart/start up", "Type=Application\nName=start up\nComment=\\sx\\\\yz"},
             {"a $1`b%c\"", "d/applications/odd", "/a \\\\$1\\\\`b%%c\\\\\"\"\nTerminal=false\n"},
             {"a document", "h/Tisch/doc", "/a%20document\n"},
             {"c", "h/Tisch/folder", "Type=Link\n"}}) {
        const std::string link = folder.Name(file), entry = file + ".desktop", to = folder.Name(target);
        for (const char* again : {"new", "again"})
            EXPECT_EQ(CodeOf([&] { qel::WriteShellLink(to, link, comment); }), 0) << again;
        EXPECT_NE(folder.Read(entry).find(expected), std::string::npos) << folder.Read(entry);
        EXPECT_EQ(Output("desktop-file-validate " + Quoted(folder.Posix(entry)) + " 2>&1"), "");
        qel::DeleteShellLink(link);
        EXPECT_EQ(Line({folder.Has(entry), folder.Has(file + ".lnk")}), "0 0");
        // With an entry of somebody else there is no link. One of ours goes also when its link has gone before.
        for (const auto& [code, key] : Cases<LONG, const char*>{
                 {80, "Other"},
                 {0, "QELLIB10-Link"},
             }) {
            folder.Write(entry, std::string("[Desktop Entry]\nX-") + key + "=1\n");
            EXPECT_EQ(CodeOf([&] { qel::WriteShellLink("\\none", link, std::nullopt); }), code);
            EXPECT_EQ(std::filesystem::remove(folder.Posix(file + ".lnk")), code == 0);
            EXPECT_EQ(CodeOf([&] { qel::DeleteShellLink(link); }), 2);
            EXPECT_EQ(folder.Has(entry), code == 80);
        }
    }
}
