#include <sys/stat.h>

#include "../support/test.h"
#include "qellib10/file/q_file.h"

namespace {

namespace fs = std::filesystem;

// A folder that is the process's current one for the length of a test.
class FileFolders : public testing::Test {
protected:
    FileFolders() { fs::current_path(m_folder.Posix()); }
    ~FileFolders() override { fs::current_path(m_before); }

    const fs::path m_before = fs::current_path();
    const TempFolder m_folder;
};

}  // namespace

TEST_F(FileFolders, ADeletedCurrentFolderIsAFailure) {
    CString current;
    EXPECT_EQ(CQFile::GetCurrentDirectoryA(current), 1);
    EXPECT_EQ(current, m_folder.Path());
    fs::remove(m_folder.Posix());
    EXPECT_EQ(CQFile::GetCurrentDirectoryA(current), 0);
}

TEST_F(FileFolders, MissingOnesAreMade) {
    const EnvironmentScope drive("QELLIB10_DRIVE_Q", m_folder.Posix("q").c_str());
    const EnvironmentScope net("QELLIB10_NET_ROOT", m_folder.Posix("net").c_str());
    fs::create_directories("q");
    fs::create_directories("net/server/share");
    // An empty first name is the root, an empty last one is ignored.
    for (const auto& [path, made] : Cases<std::string, const char*>{
             {"a\\b", "a/b"},
             {"a\\c\\", "a/c"},
             {"a\\..\\d", "d"},
             {"e/f", "e/f"},
             {m_folder.Name("g") + "\\h", "g/h"},
             {"Q:\\i\\j", "q/i/j"},
             {"q:k", "q/k"},
             {"a\\b", "a/b"},
             {"", ""},
             {"\\\\server\\share\\l", "net/server/share/l"},
             {"\x95\x5C\\\x83\x5C", "表/ソ"},
         }) {
        EXPECT_EQ(CQFile::CreateDirectories(path.c_str()), 1) << path;
        EXPECT_TRUE(fs::is_directory(m_folder.Posix(made))) << path;
        EXPECT_EQ(fs::current_path(), m_folder.Posix()) << path;
    }
}

TEST_F(FileFolders, MakingStopsWhereItFails) {
    m_folder.Write("file", "");
    for (const auto& [path, stop] : Cases<const char*, const char*>{
             {"a\\..\\file\\c", ""},
             {"a\\\\b", "a"},
             {"a\\*\\c", "a"},
             {"\\\\s", ""},
         }) {
        EXPECT_EQ(CQFile::CreateDirectories(path), 0) << path;
        EXPECT_EQ(fs::current_path(), m_folder.Posix(stop)) << path;
        fs::current_path(m_folder.Posix());
    }
    EXPECT_EQ(CQFile::CreateDirectories(std::string(MAX_PATH, 'a').c_str()), 0);
}

TEST_F(FileFolders, TreeGoesButNotWhatItsLinksLeadTo) {
    fs::create_directories("tree/in/deep");
    fs::create_directories("out");
    for (const char* file : {"tree/a", "tree/in/.hidden", "tree/in/deep/\xFF", "out/kept"}) m_folder.Write(file, "x");
    fs::create_symlink("../../out", "tree/in/link");
    ASSERT_EQ(::mkfifo("tree/pipe", 0600), 0);
    EXPECT_EQ(CQFile::DelTree("tree"), 1);
    EXPECT_FALSE(m_folder.Has("tree"));
    fs::create_symlink("out", "tree");
    EXPECT_EQ(CQFile::DelTree("tree\\"), 1);
    EXPECT_EQ(Line({m_folder.Has("tree"), m_folder.Has("out/kept")}), "0 1");
    EXPECT_EQ(CQFile::DelTree("tree"), 1);  // missing
}

TEST_F(FileFolders, TreeStaysFromTheFirstFailureOn) {
    fs::create_directories("tree");
    m_folder.Write("tree/file", "x");
    const EnvironmentScope drive("QELLIB10_DRIVE_Q", m_folder.Posix("tree").c_str());
    const EnvironmentScope net("QELLIB10_NET_ROOT", m_folder.Posix("").parent_path().c_str());
    const std::string share = "\\\\" + m_folder.Posix().filename().string() + "\\tree";
    for (const std::string& root :
         {std::string("Q:\\"), std::string("q:"), std::string("Q:\\x\\.."), share, share + "\\."})
        EXPECT_EQ(CQFile::DelTree(root.c_str()), 0) << root;
    CFile open("tree\\file", CFile::modeRead | CFile::shareDenyNone);
    EXPECT_EQ(CQFile::DelTree("tree"), 0);
    open.Close();
    fs::permissions("tree/file", fs::perms::owner_read);
    fs::create_symlink("tree/file", "link");
    for (const char* folder : {"tree", "tree\\file", "link", "", "a?b"})
        EXPECT_EQ(CQFile::DelTree(folder), 0) << folder;
    EXPECT_EQ(Line({m_folder.Has("tree/file"), m_folder.Has("link")}), "1 1");
}

TEST_F(FileFolders, FilesGoByPattern) {
    fs::create_directories("d/sub.tmp");
    for (const char* file : {"d/a.tmp", "d/b.TMP", "d/c.txt", "d/yen\xC2\xA5.tmp", "d/a\\b.tmp", "d/a.txt"})
        m_folder.Write(file, "");
    fs::create_directory_symlink("sub.tmp", "d/link.tmp");
    EXPECT_EQ(Line({CQFile::DeleteFiles("d\\*.tmp"), CQFile::DeleteFiles("d\\C.TXT")}),
              "1 1");  // without wildcards by its case
    EXPECT_EQ(std::distance(fs::directory_iterator("d"), {}), 4);
    const CFile open("d\\a.txt", CFile::modeRead | CFile::shareDenyNone);
    EXPECT_EQ(CQFile::DeleteFiles("d/*.txt"), 0);  // and went on
    EXPECT_EQ(Line({fs::exists("d/a.txt"), fs::exists("d/c.txt")}), "1 0");
    for (const char* pattern : {"*.none", "none\\*.*", "", "\\\\server"}) EXPECT_EQ(CQFile::DeleteFiles(pattern), 1);
    m_folder.Write("here", "");
    EXPECT_EQ(CQFile::DeleteFiles("*.*"), 1);
    EXPECT_EQ(m_folder.Count(), 1);
}

TEST_F(FileFolders, FileMovesIntoNewFolders) {
    m_folder.Write("a", "first");
    EXPECT_EQ(CQFile::MoveFileA("a", "x\\y\\b", 0), 1);
    EXPECT_EQ(Line({m_folder.Has("a"), m_folder.Read("x/y/b")}), "0 first");
    m_folder.Write("a", "second");
    fs::permissions("a", fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(CQFile::MoveFileA("a", "x/y/b", 0), 0);
    EXPECT_EQ(CQFile::MoveFileA("a", "x/y/b", 1), 1);
    EXPECT_EQ(fs::status("x/y/b").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(CQFile::MoveFileA("none", "c", 1), 0);
    // Onto itself, by whatever name, nothing is lost.
    fs::create_symlink("b", "x/y/link");
    fs::create_hard_link("x/y/b", "x/y/twin");
    for (const char* target : {"x\\y\\b", "x\\..\\x\\y\\b", "x\\y\\link", "x\\y\\twin"}) {
        EXPECT_EQ(CQFile::MoveFileA("x\\y\\b", target, 1), 0) << target;
        EXPECT_EQ(m_folder.Read("x/y/b"), "second") << target;
    }
    // A source that cannot go is copied all the same.
    const CFile open("x\\y\\b", CFile::modeRead | CFile::shareDenyNone);
    EXPECT_EQ(CQFile::MoveFileA("x\\y\\b", "d", 0), 1);
    EXPECT_EQ(Line({m_folder.Has("d"), m_folder.Has("x/y/b")}), "1 1");
}
