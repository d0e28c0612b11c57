#include "qellib10/platform/storage/file_operations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <functional>
#include <random>

#include "../support/file_error_code.h"
#include "../support/full_disk.h"
#include "../support/run_at_once.h"
#include "../support/test.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/replacement.h"

namespace {

// Two files, a link to the second one, and a folder that is not empty.
class FileOperations : public testing::Test {
protected:
    FileOperations() {
        m_folder.Write("a", "new");
        m_folder.Write("b", "old");
        std::filesystem::create_symlink("b", m_folder.Posix("l"));
        std::filesystem::create_directory(m_folder.Posix("d"));
        m_folder.Write("d/x", "");
    }

    LONG Copy(const char* source, const char* target, bool mustBeNew = false) const {
        return CodeOf([&] { qel::CopyFile(m_folder.Name(source), m_folder.Name(target), mustBeNew); });
    }
    LONG Move(const char* source, const char* target) const {
        return CodeOf([&] { qel::MoveFile(m_folder.Name(source), m_folder.Name(target)); });
    }
    LONG Delete(const char* name) const {
        return CodeOf([&] { qel::DeleteFile(m_folder.Name(name)); });
    }
    void SetMode(const char* name, mode_t mode) const { ::chmod(m_folder.Posix(name).c_str(), mode); }
    struct stat StatusOf(const char* name) const {
        struct stat status = {};
        EXPECT_EQ(::stat(m_folder.Posix(name).c_str(), &status), 0);
        return status;
    }

    TempFolder m_folder;
};
using Replacement = FileOperations;

void Write(const qel::Replacement& made, const std::string& bytes) {
    qel::WriteFully(made.File(), std::as_bytes(std::span(bytes)), "a");
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

TEST_F(FileOperations, CopyTakesBytesTimeAndReadOnlyAttribute) {
    const timespec times[] = {
        {1000, 0},
        {12345, 678},
    };
    ::utimensat(AT_FDCWD, m_folder.Posix("a").c_str(), times, 0);
    SetMode("a", 0500);
    EXPECT_EQ(Copy("a", "c", true), 0);
    EXPECT_EQ(Line({m_folder.Read("c"), StatusOf("c").st_mtim.tv_nsec}), "new 678");
    EXPECT_EQ(StatusOf("c").st_mode & 07777, 0500U);
    EXPECT_EQ(Copy("a", "c", true), 80);
    EXPECT_EQ(Copy("a", "c"), 5);  // read-only, for root as well
}

// A copy of a secret is no less a secret. Mode 0 of the target: there is none.
TEST_F(FileOperations, CopiesAndMovesHaveTheRightsOfTheirKind) {
    constexpr auto kCopy = qel::CopyFile, kMove = qel::CopyToMove;
    constexpr auto kRename =
        +[](std::string_view source, std::string_view target, bool) { qel::MoveFile(source, target); };
    const mode_t before = ::umask(022);
    for (const auto& [operation, source, mode, target, expected] :
         Cases<decltype(kCopy), const char*, mode_t, mode_t, mode_t>{
             {kCopy, "s", 0600, 0, 0600},
             {kCopy, "s", 04666, 0, 0644},
             {kCopy, "s", 0666, 0600, 0600},
             {kCopy, "s", 0444, 0660, 0440},
             {kMove, "s", 0600, 0, 0600},
             {kMove, "s", 0666, 0, 0666},
             {kMove, "s", 0600, 0644, 0600},
             {kMove, "s", 0444, 0600, 0444},
             {kMove, "s", 04755, 0, 04755},
             {kCopy, "s", 0600, 04755, 0755},  // new bytes act for nobody
             {kRename, "s", 0600, 0, 0600},
             {kRename, "12AB.TMP", 0600, 0, 0644},
             {kCopy, "qel12AB.TMP", 0600, 0, 0644},  // a temporary file's mode is not meant for its target
             {kMove, "12AB.TMP", 0600, 0, 0644},
             {kMove, "qel12AB.TMP", 0600, 0640, 0640},
             {kMove, "qel12AB.TMP", 0640, 0, 0640},
             {kMove, "more12AB.TMP", 0600, 0, 0600},
             {kMove, "12ab.TMP", 0600, 0, 0600},
         }) {
        SCOPED_TRACE(std::string(source) + ' ' + std::to_string(mode) + ' ' + std::to_string(target));
        m_folder.Write(source, "secret");
        SetMode(source, mode);
        std::filesystem::remove(m_folder.Posix("t"));
        if (target != 0) m_folder.Write("t", "old");
        if (target != 0) SetMode("t", target);
        EXPECT_EQ(CodeOf([&, act = operation, from = source] { act(m_folder.Name(from), m_folder.Name("t"), false); }),
                  0);
        EXPECT_EQ(StatusOf("t").st_mode & 07777, expected);
        std::filesystem::remove(m_folder.Posix(source));
    }
    ::umask(before);
}

TEST_F(FileOperations, CopyReplacesWhatALinkLeadsTo) {
    SetMode("b", 0640);
    CFile open(m_folder.Path("a"), CFile::modeReadWrite | CFile::shareDenyWrite);  // a cabinet that is in use
    EXPECT_EQ(Copy("a", "l"), 0);
    EXPECT_EQ(m_folder.Read("b"), "new");
    EXPECT_EQ(StatusOf("b").st_mode & 07777, 0640U);
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.Posix("l")));
    EXPECT_EQ(Copy("b", "l"), 32);  // itself
    EXPECT_EQ(m_folder.Read("b"), "new");
    const CFile reader(m_folder.Path("b"), CFile::modeRead);
    EXPECT_EQ(Delete("l"), 0);  // the link, not the file
    EXPECT_TRUE(m_folder.Has("b"));
}

TEST_F(FileOperations, FailuresNameTheirReasonAndLeaveNothing) {
    SetMode("b", 0444);
    using Codes = std::vector<LONG>;
    EXPECT_EQ((Codes{Copy("no", "c"), Copy("no/no", "c"), Copy("a", "no/c")}), (Codes{2, 3, 3}));
    EXPECT_EQ((Codes{Copy("d", "c"), Copy("a", "d"), Copy("a", "b")}), (Codes{5, 5, 5}));
    EXPECT_EQ((Codes{Move("a", "b"), Move("no", "c"), Move("a", "no/c")}), (Codes{183, 2, 3}));
    EXPECT_EQ((Codes{Delete("no"), Delete("no/no"), Delete("d"), Delete("b")}), (Codes{2, 3, 5, 5}));
    EXPECT_EQ(m_folder.Count(), 4);
}

TEST_F(FileOperations, MoveRenamesOrCopiesToAnotherVolume) {
    std::filesystem::create_hard_link(m_folder.Posix("a"), m_folder.Posix("twin"));
    EXPECT_EQ(Move("a", "twin"), 183);  // one file, but two names
    EXPECT_EQ(Line({Move("a", "a"), Move("d", "e"), Move("a", "e/a")}), "0 0 0");
    EXPECT_EQ(m_folder.Read("e/a"), "new");

    const TempFolder shm("/dev/shm");
    const auto away = [&](const char* name) {
        return CodeOf([&] { qel::MoveFile(m_folder.Name(name), shm.Name("x")); });
    };
    if (StatusOf("e").st_dev == shm.Device()) GTEST_SKIP() << "one volume";
    EXPECT_EQ(away("e"), 17);
    EXPECT_EQ(away("e/a"), 0);
    EXPECT_EQ(shm.Read("x"), "new");
    EXPECT_FALSE(m_folder.Has("e/a"));
    EXPECT_EQ(away("b"), 183);
}

// Only the file may be written, not its folder: it is written in place.
TEST_F(FileOperations, CopyIntoAClosedFolderWritesInPlace) {
    m_folder.Write("d/x", "older");
    std::filesystem::create_symlink("d/x", m_folder.Posix("into"));
    SetMode("", 0777);
    SetMode("d/x", 0666);
    SetMode("d", 0555);
    EXPECT_EQ(AsOrdinaryUser([&] { return Copy("a", "d/y"); }), 5);
    EXPECT_EQ(AsOrdinaryUser([&] { return Delete("d/x"); }), 5);
    const timespec times[] = {
        {1000, 0},
        {12345, 678},
    };
    for (const auto& [source, target, isOwn] : Cases<const char*, const char*, bool>{
             {"b", "into", false},
             {"a", "d/x", true},
         }) {
        ::utimensat(AT_FDCWD, m_folder.Posix(source).c_str(), times, 0);
        const uid_t owner = isOwn ? 65534 : 0;
        EXPECT_TRUE(::geteuid() != 0 || ::chown(m_folder.Posix("d/x").c_str(), owner, owner) == 0);
        EXPECT_EQ(AsOrdinaryUser([&, from = source, to = target] { return Copy(from, to); }), 0) << target;
        EXPECT_EQ(m_folder.Read("d/x"), m_folder.Read(source)) << target;
        EXPECT_EQ(StatusOf("d/x").st_mtim.tv_sec == 12345, isOwn || ::geteuid() != 0);
    }
    const std::string before = m_folder.Read("d/x");
    m_folder.Write("long", std::string(300'000, 'a'));
    EXPECT_EQ(OnFullDisk(100'000, [&] { return AsOrdinaryUser([&] { return Copy("long", "d/x"); }); }), 112);
    EXPECT_EQ(m_folder.Read("d/x"), before);
    SetMode("d", 0755);
}

// As the kernel has it: in a folder where everybody may make files nobody else's link decides where a file is made.
TEST_F(FileOperations, LinksOfOthersAreNotFollowedWhereEverybodyMayMakeThem) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root";
    constexpr uid_t kOwner = 1234, kOther = 5678;
    ASSERT_EQ(::chown(m_folder.Posix("d").c_str(), kOwner, kOwner), 0);
    for (const auto& [mode, linkOwner, target, code] :
         Cases<mode_t, uid_t, const char*, LONG>{{01777, kOther, "b", 5},
                                                 {01777, kOther, "none", 5},
                                                 {01777, kOwner, "b", 0},
                                                 {01777, 0, "b", 0},  // the caller's own
                                                 {0777, kOther, "none", 0},
                                                 {01775, kOther, "none", 0}}) {
        SCOPED_TRACE(std::to_string(mode) + ' ' + std::to_string(linkOwner) + target);
        std::filesystem::remove(m_folder.Posix("none"));
        std::filesystem::remove(m_folder.Posix("d/l"));
        std::filesystem::create_symlink(m_folder.Posix(target), m_folder.Posix("d/l"));
        ASSERT_EQ(::lchown(m_folder.Posix("d/l").c_str(), linkOwner, linkOwner), 0);
        SetMode("d", mode);
        EXPECT_EQ(CodeOf([&] { qel::Replacement(m_folder.Name("d/l")).Commit(); }), code);
        EXPECT_EQ(m_folder.Has("none"), code == 0 && target == std::string("none"));
    }
}

TEST_F(FileOperations, AFullDiskLeavesTheOldFile) {
    m_folder.Write("a", std::string(300'000, 'a'));
    EXPECT_EQ(OnFullDisk(100'000, [&] { return Copy("a", "b"); }), 112);
    EXPECT_EQ(Line({m_folder.Read("b"), m_folder.Count()}), "old 4");
}

TEST_F(Replacement, HappensWholeOrNotAtAll) {
    SetMode("b", 0600);
    Write(qel::Replacement(m_folder.Name("b")), "new");
    EXPECT_EQ(m_folder.Read("b"), "old");
    qel::Replacement made(m_folder.Name("b"));
    Write(made, "new");
    made.Commit();
    EXPECT_EQ(m_folder.Read("b"), "new");
    EXPECT_EQ(StatusOf("b").st_mode & 07777, 0600U);
    EXPECT_EQ(m_folder.Count(), 4);
    EXPECT_EQ(CodeOf([&] { qel::Replacement(m_folder.Name("b")).CommitNew(); }), 80);
    EXPECT_EQ(CodeOf([&] { qel::Replacement(m_folder.Name(std::string(190, 'n'))).CommitNew(); }), 0);
}

// What killed writers have left is never more open than the file itself, and the next writer removes it.
TEST_F(Replacement, IsNobodyElsesBeforeItIsWritten) {
    SetMode("b", 0600);
    m_folder.Write("b.E100.tmp", "of a killed writer");
    m_folder.Write("b.E101.tmp", "of another one");
    m_folder.Write("b.E109.tmp", "of one whose neighbours could finish");
    m_folder.Write("b.0001.tmp", "somebody's own");
    qel::Replacement first(m_folder.Name("b"));
    qel::Replacement second(m_folder.Name("b"));
    for (const qel::Replacement* made : {&first, &second}) {
        struct stat status = {};
        EXPECT_EQ(::fstat(made->File().Get(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600U);
        Write(*made, "new");
    }
    first.Commit();
    SetMode("b", 0640);  // meanwhile
    second.Commit();
    EXPECT_EQ(StatusOf("b").st_mode & 07777, 0640U);
    EXPECT_EQ(m_folder.Count(), 5);
    EXPECT_TRUE(m_folder.Has("b.0001.tmp"));

    qel::Replacement lost(m_folder.Name("b"));
    std::filesystem::remove(m_folder.Posix("b.E100.tmp"));
    m_folder.Write("b.E100.tmp", "half of another one");
    EXPECT_EQ(CodeOf([&] { lost.Commit(); }), 32);
    EXPECT_EQ(m_folder.Read("b"), "new");
}

// The list lets user 4711 read and write, the file's group only read.
TEST_F(Replacement, KeepsOwnerListAndAttributes) {
    const std::string list(
        "\2\0\0\0\1\0\6\0\377\377\377\377\2\0\6\0\147\22\0\0\4\0\4\0\377\377\377\377"
        "\20\0\6\0\377\377\377\377\40\0\0\0\377\377\377\377",
        44);
    const auto set = [&](const char* file, const char* name, const std::string& value) {
        return ::setxattr(m_folder.Posix(file).c_str(), name, value.data(), value.size(), 0);
    };
    const auto valueOf = [&](const char* name) {
        char value[100];
        const ssize_t size = ::getxattr(m_folder.Posix("b").c_str(), name, value, sizeof value);
        return std::string(value, size > 0 ? static_cast<std::size_t>(size) : 0);
    };
    const auto replace = [&] {
        qel::Replacement made(m_folder.Name("b"));
        EXPECT_EQ(::fgetxattr(made.File().Get(), "system.posix_acl_access", nullptr, 0),
                  valueOf("system.posix_acl_access").empty() ? -1 : 44);
        made.Commit();
        return 0;
    };
    if (set("b", "system.posix_acl_access", list) != 0 || set("b", "user.note", "kept") != 0 || ::geteuid() != 0) {
        GTEST_SKIP() << "needs lists, attributes and root";
    }
    ASSERT_EQ(::chown(m_folder.Posix("b").c_str(), 1234, 5678), 0);
    const char capability[20] = {1, 0, 0, 2, 0, 4};
    EXPECT_EQ(set("b", "security.capability", std::string(capability, sizeof(capability))), 0);
    replace();
    EXPECT_EQ(valueOf("security.capability"), "") << "the new bytes may not do what the old ones might";
    EXPECT_EQ(Line({StatusOf("b").st_uid, StatusOf("b").st_gid, StatusOf("b").st_mode & 07777}),
              Line({1234, 5678, 0660}));
    EXPECT_EQ(valueOf("system.posix_acl_access"), list);
    EXPECT_EQ(valueOf("user.note"), "kept");

    // The group of whoever cannot keep the file's own gets no more than others; the one who is named does.
    SetMode("", 0777);
    EXPECT_EQ(AsOrdinaryUser(replace), 0);
    EXPECT_EQ(Line({StatusOf("b").st_uid, valueOf("system.posix_acl_access")[22]}), Line({65534, '\0'}));
    EXPECT_EQ(valueOf("system.posix_acl_access").substr(0, 22), list.substr(0, 22));

    // A list that the folder would give a new file opens no old one to others.
    ASSERT_EQ(::removexattr(m_folder.Posix("b").c_str(), "system.posix_acl_access"), 0);
    ASSERT_EQ(set("", "system.posix_acl_default", list), 0);
    ASSERT_EQ(::chown(m_folder.Posix("b").c_str(), 0, 5678), 0);
    SetMode("b", 0664);
    replace();
    EXPECT_EQ(valueOf("system.posix_acl_access"), "");
    EXPECT_EQ(StatusOf("b").st_mode & 07777, 0664U);
    EXPECT_EQ(AsOrdinaryUser(replace), 0);
    EXPECT_EQ(StatusOf("b").st_mode & 07777, 0644U);
    ASSERT_EQ(::chown(m_folder.Posix("b").c_str(), 65534, 5678), 0);
    SetMode("b", 0604);
    EXPECT_EQ(AsOrdinaryUser(replace), 0);
    EXPECT_EQ(StatusOf("b").st_mode & 07777, 0600U) << "who was of the group is one of the others now";
}

// What is left of a read-only file cannot be opened for writing.
TEST_F(Replacement, RemovesReadOnlyLeftovers) {
    SetMode("", 0777);
    SetMode("a", 0444);
    const auto leave = [&](bool likeAnother) {
        return InChild([&] {
            const auto* const killed = likeAnother ? new qel::Replacement(m_folder.Name("c"), m_folder.Posix("a"))
                                                   : new qel::Replacement(m_folder.Name("c"), 0444);
            return killed->File() ? 0 : 1;
        });
    };
    EXPECT_EQ(AsOrdinaryUser([&] {
                  return leave(false) | leave(true) | (std::filesystem::exists(m_folder.Posix("c.E100.tmp")) ? 0 : 2);
              }),
              0);
    EXPECT_EQ(AsOrdinaryUser([&] { return Copy("a", "c"); }), 0);
    EXPECT_EQ(m_folder.Count(), 5);
    // A writer that was killed between the two steps of a rename by links: the file is finished.
    EXPECT_EQ(AsOrdinaryUser([&] {
                  std::filesystem::create_hard_link(m_folder.Posix("c"), m_folder.Posix("c.E100.tmp"));
                  return leave(false);
              }),
              0);
    EXPECT_EQ(StatusOf("c").st_mode & 07777, 0444U);
}

// Who looks whether a file is a leftover does not change the rights of one that is only just there.
TEST_F(Replacement, KeepsTheRightsOfReadOnlyFilesMadeAtOnce) {
    SetMode("", 0777);
    const int rounds = SoakCount(300);
    const auto make = [&](int) {
        int wrong = 0;
        for (int count = 0; count < rounds; ++count) {
            const qel::Replacement made(m_folder.Name("c"), 0444);
            struct stat status = {};
            wrong += ::fstat(made.File().Get(), &status) != 0 || (status.st_mode & 07777) != 0444;
        }
        return wrong;
    };
    EXPECT_EQ(AsOrdinaryUser([&] { return RunAtOnce(4, make); }), 0);
}

// Whenever the writer is killed, a reader finds one of the whole files, and nobody else finds anything.
TEST_F(Replacement, SurvivesKills) {
    const std::string second(70'000, '2');
    for (const char* name : {"a", "b", "d/x"}) SetMode(name, 0600);
    std::minstd_rand random(SoakSeed());
    for (int kill = SoakCount(40); kill > 0; --kill) {
        ChildProcess writer([&] {
            for (int i = 0;; ++i) {
                qel::Replacement made(m_folder.Name("b"));
                Write(made, i % 2 == 0 ? second : "old");
                made.Commit();
            }
            return 0;
        });
        ::usleep(static_cast<useconds_t>(500 + random() % 5500));
        writer.Kill();
        const std::string found = m_folder.Read("b");
        ASSERT_TRUE(found == "old" || found == second);
        for (const auto& file : std::filesystem::directory_iterator(m_folder.Posix())) {
            const auto rights = static_cast<unsigned>(file.symlink_status().permissions());
            ASSERT_TRUE(file.is_directory() || file.is_symlink() || rights == 0600) << file.path();
        }
    }
    qel::Replacement(m_folder.Name("b")).Commit();
    EXPECT_EQ(m_folder.Count(), 4);
}
