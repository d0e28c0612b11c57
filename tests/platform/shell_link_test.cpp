#include "qellib10/platform/shell/shell_link.h"

#include <gtest/gtest.h>
#include <stdio.h>

#include <algorithm>
#include <string>
#include <utility>

#include "../support/environment_scope.h"
#include "../support/file_error_code.h"
#include "../support/temp_folder.h"
#include "qellib10/platform/storage/make_folders.h"

namespace {

// What a program prints, blanks and tabs in one piece each.
std::string Output(const std::string& command) {
    FILE* pipe = ::popen(command.c_str(), "r");
    std::string text;
    for (int c = 0; pipe != nullptr && (c = std::fgetc(pipe)) != EOF;) {
        const bool blank = c == '\t' || c == ' ';
        if (!blank || !text.ends_with(' ')) text += blank ? ' ' : static_cast<char>(c);
    }
    EXPECT_EQ(::pclose(pipe), 0) << command << "\n" << text;
    return text;
}

std::string Quoted(const std::filesystem::path& path) { return std::string(1, '\'').append(path).append(1, '\''); }

}  // namespace

TEST(ShellLink, IsReadByAnotherProgram) {
    const TempFolder folder;
    folder.Write("能力.txt", "12345");
    for (const auto& [target, expected] :
         {std::pair("能力.txt", "File size : 5 "), {"none", "Access time : Not set"}}) {
        qel::WriteShellLink(folder.Path(target).View(), folder.Path("link").View(), CString("\x95\x5C\x8E\xA6 x"));
        const std::string read = Output("lnkinfo -c windows-932 " + Quoted(folder.Posix("link.lnk")));
        std::string path = folder.Posix(target).string();
        std::ranges::replace(path, '/', '\\');
        for (const std::string& line : {"Local path : " + path + "\n", std::string("Description : 表示 x\n"),
                                        std::string(expected), std::string("flags : 0x00000020")}) {
            EXPECT_NE(read.find(line), read.npos) << line << read;
        }
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
    struct Case {
        std::string target, link, expected;
    };
    for (const Case& c :
         {Case{"none", "c/autostart/start up", "Type=Application\nName=start up\nComment=\\sx\\\\y\n"},
          Case{"a $1`b%c\"", "d/applications/odd", "/a \\\\$1\\\\`b%%c\\\\\"\"\nTerminal=false\n"},
          Case{"a document", "h/Tisch/doc", "/a%20document\n"}, Case{"c", "h/Tisch/folder", "Type=Link\n"}}) {
        SCOPED_TRACE(c.link);
        const std::string link = folder.Name(c.link);
        qel::WriteShellLink(folder.Path(c.target).View(), link, CString(" x\\y"));
        const std::string text = folder.Read(c.link + ".desktop");
        EXPECT_NE(text.find(c.expected), text.npos) << text;
        EXPECT_EQ(Output("desktop-file-validate " + Quoted(folder.Posix(c.link + ".desktop")) + " 2>&1"), "");
        qel::DeleteShellLink(link);
        EXPECT_FALSE(folder.Has(c.link + ".desktop") || folder.Has(c.link + ".lnk"));
    }
}

TEST(ShellLink, LeavesForeignEntriesAlone) {
    const TempFolder folder;
    const EnvironmentScope config("XDG_CONFIG_HOME", folder.Posix().c_str());
    const std::string link = folder.Name("autostart") + "\\x";
    qel::MakeFolders(folder.Path("autostart").View());
    folder.Write("autostart/x.desktop", "[Desktop Entry]\nX-Other=1\n");
    EXPECT_EQ(CodeOf([&] { qel::WriteShellLink("\\none", link, std::nullopt); }), 80);
    qel::DeleteShellLink(link);
    EXPECT_TRUE(folder.Has("autostart/x.desktop"));
    // An entry of ours goes also when the link has gone before.
    folder.Write("autostart/x.desktop", "[Desktop Entry]\nX-QELLIB10-Link=y\n");
    EXPECT_EQ(CodeOf([&] { qel::DeleteShellLink(link); }), 2);
    EXPECT_FALSE(folder.Has("autostart/x.desktop"));
}
