#include <sys/stat.h>

#include "../support/child_process.h"
#include "../support/test.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/restart/restart_queue.h"
#include "qellib10/runtime/system_info.h"

namespace {

// A file to be moved and its target, and the folder where requests for the next start are kept.
class Restart : public testing::Test {
protected:
    Restart() {
        m_folder.Write("source", "new");
        m_folder.Write("target", "old");
    }
    ~Restart() override { qel::SetSystemFamily(qel::SystemFamily::Nt); }

    auto Requests() { return qel::RestartQueue::OfUser().Waiting(); }

    const TempFolder m_folder, m_state;
    const EnvironmentScope m_stateFolder{"QELLIB10_STATE_DIR", m_state.Posix().c_str()};
    const CString m_source = m_folder.Path("source"), m_target = m_folder.Path("target");
    char m_waiting[MAX_PATH] = "as it was";
};

}  // namespace

TEST_F(Restart, NotNeededWhereItWorksAtOnce) {
    EXPECT_EQ(CQFile::MoveFileReboot(m_source, m_target, m_waiting, MAX_PATH), 0);
    EXPECT_EQ(m_folder.Read("target"), "new");
    for (const char* present : {"yes", "no"}) EXPECT_EQ(CQFile::DeleteFileReboot(m_target, 1), 0) << present;
    EXPECT_EQ(Line({m_folder.Count(), m_state.Count()}), "0 0");
}

TEST_F(Restart, FileInUseIsReplacedAndDeletedThen) {
    ASSERT_EQ(::chmod(m_folder.Posix("target").c_str(), 0741), 0);
    ASSERT_EQ(::chmod(m_folder.Posix("source").c_str(), 0600), 0);
    ASSERT_EQ(::rename(m_folder.Posix("source").c_str(), m_folder.Posix("12AB.TMP").c_str()), 0);
    const CFile open(m_target, CFile::modeRead);
    EXPECT_EQ(CQFile::MoveFileReboot(m_folder.Path("12AB.TMP"), m_target, m_waiting, MAX_PATH), 1);
    EXPECT_EQ(CQFile::DeleteFileReboot(m_target, 1), 1);
    EXPECT_EQ(m_folder.Read("target"), "old");
    EXPECT_FALSE(m_folder.Has("12AB.TMP"));
    EXPECT_EQ(CQFile::GetFolderFromPath(m_waiting), m_folder.Path());
    const std::string waiting = qel::ToPosixPath(m_waiting), target = qel::ToPosixPath(m_target.View());
    struct stat status = {};
    ASSERT_EQ(::stat(waiting.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0741u) << "a temporary file has the rights of what it replaces";
    ASSERT_EQ(Requests().size(), 2u);
    EXPECT_EQ(Requests()[0].source, waiting);
    EXPECT_EQ(Requests()[0].target, target);
    EXPECT_TRUE(Requests()[1].target.empty());
    EXPECT_EQ(Requests()[1].source, target);
}

TEST_F(Restart, WhatCannotBeLookedAtIsNeitherGoneNorFree) {
    const auto inClosedFolder = [&](int (*ask)(const CString&)) {
        return InChild([&] {
            const std::string closed = m_folder.Posix();
            if (::chmod(closed.c_str(), 0) != 0 || (::geteuid() == 0 && ::seteuid(65534) != 0)) return 98;
            return ask(m_target);
        });
    };
    EXPECT_EQ(inClosedFolder([](const CString& file) { return CQFile::DeleteFileReboot(file, 1) == 0 ? 1 : 0; }), 0);
    EXPECT_EQ(inClosedFolder([](const CString& file) { return CQFile::IsCanOverwrite(file); }), 0);
    std::filesystem::permissions(m_folder.Posix(), std::filesystem::perms::owner_all);
}

TEST_F(Restart, AFailedRequestLeavesTheFiles) {
    EXPECT_EQ(CQFile::MoveFileReboot(m_folder.Path("none"), m_folder.Path("x"), m_waiting, MAX_PATH), -3);
    EXPECT_EQ(m_folder.Count(), 2);
    const CFile open(m_target, CFile::modeRead);
    m_state.Write("file", "");
    const EnvironmentScope nowhere("QELLIB10_STATE_DIR", (m_state.Posix("file") / "x").c_str());
    EXPECT_EQ(CQFile::MoveFileReboot(m_source, m_target, m_waiting, 3), -2);
    EXPECT_EQ(m_waiting, m_folder.Path().Left(2));  // what fits
    EXPECT_EQ(m_folder.Count(), 2);
    EXPECT_EQ(CQFile::DeleteFileReboot(m_target, 0), -2);
}

TEST_F(Restart, OlderSystemsWriteRequestsIntoWininit) {
    qel::SetSystemFamily(qel::SystemFamily::Win95);
    const CFile open(m_target, CFile::modeRead);
    EXPECT_EQ(CQFile::MoveFileReboot(m_source, m_target, m_waiting, MAX_PATH), 1);
    EXPECT_EQ(m_state.Read("WININIT.INI"),
              std::string("[rename]\r\n").append(m_target).append("=").append(m_waiting).append("\r\n"));

    m_state.Write("WinInit.ini", "[other]\r\na=b\r\n[RENAME]\r\nNul=\\old\r\n");
    EXPECT_EQ(CQFile::DeleteFileReboot("\\x", 1), 0);
    EXPECT_EQ(Line({CQFile::DeleteFileReboot("\\y", 0), CQFile::DeleteFileReboot("\\z", 0)}), "1 1");
    EXPECT_EQ(m_state.Read("WinInit.ini"), "[other]\r\na=b\r\n[RENAME]\r\nNul=\\old\r\nNul=\\y\r\nNul=\\z\r\n");

    // A target that is not there has no short name; what was to be moved waits under its new one.
    std::string tooLong = m_folder.Name("x");
    for (int i = 0; i < 100; ++i) tooLong += "\x95\x5C";  // 300 bytes on disk
    EXPECT_EQ(CQFile::MoveFileReboot(m_waiting, tooLong.c_str(), nullptr, 0), -1);
    EXPECT_EQ(m_folder.Count(), 2);
    EXPECT_TRUE(Requests().empty());
}
