#include "qellib10/platform/storage/file_operations.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "../support/child_process.h"
#include "../support/temp_folder.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/folder_operations.h"
#include "qellib10/platform/storage/replacement.h"

namespace {

LONG CodeOf(const std::function<void()>& body) {
    try {
        body();
        return 0;
    } catch (const CFileException& error) {
        return error.m_lOsError;
    }
}

LONG Copy(const CString& source, const CString& target, bool mustBeNew = false) {
    return CodeOf([&] { qel::CopyFile(source.View(), target.View(), mustBeNew); });
}
LONG Move(const CString& source, const CString& target, unsigned flags = 0) {
    return CodeOf([&] { qel::MoveFile(source.View(), target.View(), flags); });
}
LONG Delete(const CString& name) {
    return CodeOf([&] { qel::DeleteFile(name.View()); });
}

mode_t ModeOf(const std::string& posix) {
    struct stat status = {};
    EXPECT_EQ(::stat(posix.c_str(), &status), 0);
    return status.st_mode & 07777;
}

timespec WrittenAt(const std::string& posix) {
    struct stat status = {};
    EXPECT_EQ(::stat(posix.c_str(), &status), 0);
    return status.st_mtim;
}

// Runs @p body in a child whom permissions bind, which they do not for root.
int AsOrdinaryUser(const std::function<int()>& body) {
    return InChild([&] {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && (::setegid(kNobody) != 0 || ::seteuid(kNobody) != 0)) return 98;
        return body();
    });
}

}  // namespace

TEST(FileOperations, CopyTakesBytesTimeAndReadOnlyAttribute) {
    const TempFolder folder;
    const std::string bytes(700'001, 'x');
    folder.Write("a", bytes);
    const std::array<timespec, 2> times = {timespec{1000, 0}, timespec{12345, 678}};
    ::utimensat(AT_FDCWD, folder.Posix("a").c_str(), times.data(), 0);
    ::chmod(folder.Posix("a").c_str(), 0500);
    EXPECT_EQ(Copy(folder.Path("a"), folder.Path("b"), true), 0);
    EXPECT_EQ(folder.Read("b"), bytes);
    EXPECT_EQ(WrittenAt(folder.Posix("b")).tv_nsec, 678);
    EXPECT_EQ(ModeOf(folder.Posix("b")), 0444);  // the rights are those of a new file
    EXPECT_EQ(Copy(folder.Path("a"), folder.Path("b"), true), 80);
    EXPECT_EQ(Copy(folder.Path("a"), folder.Path("b")), 5);  // read-only, for root as well
    EXPECT_EQ(folder.Count(), 2);
}

TEST(FileOperations, CopyReplacesWhatALinkLeadsTo) {
    const TempFolder folder;
    folder.Write("a", "new");
    folder.Write("b", "old");
    ::chmod(folder.Posix("b").c_str(), 0640);
    std::filesystem::create_symlink("b", folder.Posix("l"));
    CFile open(folder.Path("a"), CFile::modeReadWrite | CFile::shareDenyWrite);  // a cabinet that is in use
    EXPECT_EQ(Copy(folder.Path("a"), folder.Path("l")), 0);
    EXPECT_EQ(folder.Read("b"), "new");
    EXPECT_EQ(ModeOf(folder.Posix("b")), 0640);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.Posix("l")));
    EXPECT_EQ(Copy(folder.Path("b"), folder.Path("l")), 32);  // itself
    EXPECT_EQ(folder.Read("b"), "new");
}

TEST(FileOperations, FailuresNameTheirReasonAndLeaveNothing) {
    const TempFolder folder;
    folder.Write("a", "x");
    folder.Write("b", "y");
    std::filesystem::create_directory(folder.Posix("d"));
    folder.Write("d/x", "");
    const auto path = [&](const char* name) { return folder.Path() + "\\" + name; };
    EXPECT_EQ(Copy(path("no"), path("c")), 2);
    EXPECT_EQ(Copy(path("no\\no"), path("c")), 3);
    EXPECT_EQ(Copy(path("a"), path("no\\c")), 3);
    EXPECT_EQ(Copy(path("d"), path("c")), 5);
    EXPECT_EQ(Copy(path("a"), path("d")), 5);
    EXPECT_EQ(Move(path("a"), path("b")), 183);
    EXPECT_EQ(Move(path("no"), path("c")), 2);
    EXPECT_EQ(Move(path("a"), path("no\\c")), 3);
    EXPECT_EQ(Move(path("a"), path("d"), qel::kMoveReplace), 5);
    EXPECT_EQ(Delete(path("no")), 2);
    EXPECT_EQ(Delete(path("no\\no")), 3);
    EXPECT_EQ(Delete(path("d")), 5);
    EXPECT_EQ(CodeOf([&] { qel::RemoveFolder(path("d").View()); }), 145);
    EXPECT_EQ(CodeOf([&] { qel::RemoveFolder(path("a").View()); }), 267);
    EXPECT_EQ(CodeOf([&] { qel::CreateFolder(path("a").View()); }), 183);
    EXPECT_EQ(CodeOf([&] { qel::CreateFolder(path("no\\d").View()); }), 3);
    ::chmod(folder.Posix("a").c_str(), 0444);
    EXPECT_EQ(Delete(path("a")), 5);
    EXPECT_EQ(folder.Count(), 3);
}

TEST(FileOperations, MoveRenamesWhateverItIs) {
    const TempFolder folder;
    folder.Write("a", "x");
    folder.Write("b", "y");
    std::filesystem::create_directory(folder.Posix("d"));
    EXPECT_EQ(Move(folder.Path("a"), folder.Path("a")), 0);
    EXPECT_EQ(folder.Read("a"), "x");
    EXPECT_EQ(Move(folder.Path("a"), folder.Path("b"), qel::kMoveReplace), 0);
    EXPECT_EQ(folder.Read("b"), "x");
    EXPECT_EQ(Move(folder.Path("d"), folder.Path("e")), 0);
    EXPECT_EQ(Move(folder.Path("b"), folder.Path("e/b")), 0);
    EXPECT_EQ(folder.Read("e/b"), "x");
}

TEST(FileOperations, MoveToAnotherVolumeCopies) {
    const TempFolder here;
    const TempFolder there("/dev/shm");
    here.Write("a", "x");
    std::filesystem::create_directory(here.Posix("d"));
    if (Move(here.Path("a"), there.Path("a")) == 0) GTEST_SKIP() << "one volume";
    EXPECT_EQ(Move(here.Path("a"), there.Path("a")), 17);
    EXPECT_EQ(Move(here.Path("d"), there.Path("d"), qel::kMoveCopy), 17);
    CFile::Rename(here.Path("a"), there.Path("a"));
    EXPECT_EQ(there.Read("a"), "x");
    EXPECT_FALSE(here.Has("a"));
}

TEST(FileOperations, DeletingALinkLeavesItsTarget) {
    const TempFolder folder;
    folder.Write("a", "x");
    std::filesystem::create_symlink("a", folder.Posix("l"));
    const CFile open(folder.Path("a"), CFile::modeRead);
    EXPECT_EQ(Delete(folder.Path("l")), 0);
    EXPECT_EQ(folder.Read("a"), "x");
}

// Only the file may be written, not its folder: it is written in place.
TEST(FileOperations, CopyIntoAClosedFolderWritesInPlace) {
    const TempFolder folder;
    folder.Write("a", "new");
    std::filesystem::create_directory(folder.Posix("closed"));
    folder.Write("closed/b", "older");
    ::chmod(folder.Posix().c_str(), 0755);
    ::chmod(folder.Posix("closed/b").c_str(), 0666);
    EXPECT_TRUE(::geteuid() != 0 || ::chown(folder.Posix("closed/b").c_str(), 65534, 65534) == 0);
    ::chmod(folder.Posix("closed").c_str(), 0555);
    const CString target = folder.Path("closed/b");
    EXPECT_EQ(AsOrdinaryUser([&] { return Copy(folder.Path("a"), target); }), 0);
    EXPECT_EQ(folder.Read("closed/b"), "new");
    EXPECT_EQ(AsOrdinaryUser([&] { return Copy(folder.Path("a"), folder.Path("closed/c")); }), 5);
    EXPECT_EQ(AsOrdinaryUser([&] { return CodeOf([&] { qel::Replacement made(target.View()); }); }), 5);
    EXPECT_EQ(AsOrdinaryUser([&] { return Delete(target); }), 5);
    ::chmod(folder.Posix("closed").c_str(), 0755);
}

TEST(FileOperations, AFullDiskLeavesTheOldFile) {
    const TempFolder folder;
    folder.Write("a", std::string(300'000, 'a'));
    folder.Write("b", "old");
    EXPECT_EQ(InChild([&] {
                  const rlimit limit = {100'000, 100'000};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  ::signal(SIGXFSZ, SIG_IGN);
                  return Copy(folder.Path("a"), folder.Path("b"));
              }),
              112);
    EXPECT_EQ(folder.Read("b"), "old");
    EXPECT_EQ(folder.Count(), 2);
}

TEST(FileOperations, CopyBytesReachesAnyPart) {
    const TempFolder folder;
    const TempFolder elsewhere("/dev/shm");  // where the kernel may not copy for us
    std::string bytes;
    for (int i = 0; i < 100'000; ++i) bytes += std::to_string(i);
    folder.Write("a", bytes);
    CFile source(folder.Path("a"), CFile::modeRead);
    for (const TempFolder* where : {&folder, &elsewhere}) {
        CFile target(where->Path("b"), CFile::modeCreate | CFile::modeReadWrite);
        const auto copy = [&](std::uint64_t from, std::uint64_t to, std::uint64_t count) {
            return qel::CopyBytes(source.ReadableDescriptor(), from, target.WritableDescriptor(), to, count, "a", "b");
        };
        EXPECT_EQ(copy(0, 0, bytes.size()), bytes.size());
        EXPECT_EQ(copy(7, 3, 300'000), 300'000U);
        EXPECT_EQ(copy(bytes.size() - 5, bytes.size(), 10), 5U);
        EXPECT_EQ(target.GetPosition(), 0U);
        const std::string expected =
            bytes.substr(0, 3) + bytes.substr(7, 300'000) + bytes.substr(300'003) + bytes.substr(bytes.size() - 5);
        EXPECT_TRUE(where->Read("b") == expected);
    }
}

TEST(Replacement, HappensWholeOrNotAtAll) {
    const TempFolder folder;
    folder.Write("a", "old");
    ::chmod(folder.Posix("a").c_str(), 0600);
    const CString path = folder.Path("a");
    const auto write = [](const qel::Replacement& made) {
        qel::WriteFully(made.File(), std::as_bytes(std::span(std::string_view("new"))), "a");
    };
    {
        qel::Replacement made(path.View());
        write(made);
        EXPECT_EQ(folder.Read("a"), "old");
    }
    EXPECT_EQ(folder.Read("a"), "old");
    qel::Replacement made(path.View());
    write(made);
    made.Commit();
    EXPECT_EQ(folder.Read("a"), "new");
    EXPECT_EQ(ModeOf(folder.Posix("a")), 0600);
    EXPECT_EQ(folder.Count(), 1);
    EXPECT_EQ(CodeOf([&] { qel::Replacement(path.View()).CommitNew(); }), 80);
    const CString longest = folder.Path(std::string(190, 'n'));
    EXPECT_EQ(CodeOf([&] { qel::Replacement(longest.View()).CommitNew(); }), 0);
}

// Whenever the writer is killed, a reader finds one of the whole files.
TEST(Replacement, SurvivesKills) {
    const TempFolder folder;
    const std::string first(50'000, '1');
    const std::string second(70'000, '2');
    folder.Write("a", first);
    for (int kill = 0; kill < 40; ++kill) {
        ChildProcess writer([&] {
            for (int i = 0;; ++i) {
                qel::Replacement made(folder.Path("a").View());
                qel::WriteFully(made.File(), std::as_bytes(std::span(i % 2 == 0 ? second : first)), "a");
                made.Commit();
            }
            return 0;
        });
        ::usleep(static_cast<useconds_t>(500 + kill * 137));
        writer.Kill();
        const std::string found = folder.Read("a");
        ASSERT_TRUE(found == first || found == second);
    }
}

TEST(FolderWalk, LeavesTheCurrentFolderAlone) {
    const TempFolder folder;
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::create_directory(folder.Posix("a"));
    folder.Write("f", "");
    qel::FolderWalk walk(folder.Path().View());
    EXPECT_TRUE(walk.Create("a"));  // there already
    EXPECT_TRUE(walk.Enter("a"));
    EXPECT_TRUE(walk.Enter(".."));
    EXPECT_FALSE(walk.Create("f"));
    for (const char* none : {"f", "no", "", "a?", "a\\b/c"}) EXPECT_FALSE(walk.Enter(none)) << none;
    EXPECT_TRUE(walk.Enter("a"));
    EXPECT_TRUE(walk.Create("b"));
    EXPECT_TRUE(folder.Has("a/b"));
    EXPECT_EQ(std::filesystem::current_path(), here);
    EXPECT_TRUE(walk.MakeCurrent());
    EXPECT_EQ(qel::CurrentFolder(), folder.Path("a"));
    std::filesystem::current_path(here);
}
