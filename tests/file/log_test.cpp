#include "qellib10/file/log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <random>
#include <sstream>
#include <thread>

#include "../support/run_at_once.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/platform/shell/debug_output.h"
#include "qellib10/platform/storage/file.h"

namespace {

class LogTest : public testing::Test {
protected:
    LogTest() { CLog::SetLogFile(m_folder.Path("log.txt")); }
    ~LogTest() override {
        CLog::SetLogFile(nullptr);
        CLog::SetLogLevel(0);
        CLog::SetLockKeyword(nullptr);
    }
    std::string Text() const { return m_folder.Read("log.txt"); }

    TempFolder m_folder;
};

std::string theDebugOutput;

// The text with every digit of a time, which is in brackets, replaced by 0.
std::string WithZeroTimes(std::string text) {
    bool isTime = false;
    for (char& character : text) {
        if (character == '[' || character == ']') isTime = character == '[';
        if (isTime && character >= '0' && character <= '9') character = '0';
    }
    return text;
}

}  // namespace

TEST_F(LogTest, LinesUpToTheThresholdHaveTheirTimeAndDumpsTheirRuns) {
    const auto before = qel::SetDebugOutputHook([](const char* text) { theDebugOutput += text; });
    CLog::LogOut(0, "seventeen", "0123456789\r\ndef\xB1g", 17);
    for (const int level : {1, -1}) CLog::LogOut(level, "nothing", "x", 0);
    CLog::SetLogLevel(1);
    CLog::LogOut(1, nullptr);
    CLog::SetLogFile(nullptr);
    CLog::LogOut(0, "off");
    qel::SetDebugOutputHook(before);
    const std::string time = "[0000/00/00 00:00:00],", rest = time + "nothing\r\n" + time + "\r\n";
    EXPECT_EQ(WithZeroTimes(Text()), time +
                                         "seventeen\r\n"
                                         "30 31 32 33 34 35 36 37 38 39 0D 0A 64 65 66 B1  0123456789\r\ndef\xB1\r\n"
                                         "67  g\r\n" +
                                         rest);
    EXPECT_EQ(WithZeroTimes(theDebugOutput), time + "seventeen\r\n" + rest);
}

// Of the writers every other one is a child that is forked while threads write.
TEST_F(LogTest, ThreadsAndProcessesLoseAndMixNoLine) {
    constexpr int kWriters = 100, kLines = 100;
    const auto write = [](int writer) {
        const std::string name = std::to_string(writer) + ' ';
        const std::time_t start = std::time(nullptr);
        int line = 0;
        for (; line < kLines && std::time(nullptr) - start < 9; ++line)
            CLog::LogOut(0, (name + std::to_string(line)).c_str());
        return kLines - line;
    };
    EXPECT_EQ(RunAtOnce(kWriters, write), 0);
    int next[kWriters] = {};  // each writer's lines are whole and in order
    std::istringstream text(Text());
    for (std::string line; std::getline(text, line);) {
        const int writer = std::atoi(line.substr(22).c_str()) % kWriters;
        EXPECT_EQ(line.substr(21), ',' + std::to_string(writer) + ' ' + std::to_string(next[writer]++) + '\r');
    }
    EXPECT_EQ(std::ranges::count(next, kLines), kWriters);
}

// A line that is being written when its program is killed may be torn; one that was written is not.
TEST_F(LogTest, AKilledWriterLosesNoLineAndHoldsNobodyBack) {
    auto& written = SharedWithChildren<std::atomic<int>>();
    std::minstd_rand random(SoakSeed());
    const int kills = SoakCount(100);
    for (int kill = 0; kill < kills; ++kill) {
        ChildProcess writer([&] {
            for (;; ++written) CLog::LogOut(0, std::to_string(written).c_str());
            return 0;
        });
        ::usleep(static_cast<useconds_t>(random() % 3000));
        writer.Kill();
        CLog::LogOut(0, ("next " + std::to_string(kill)).c_str());
    }
    EXPECT_GT(written, kills);
    const std::string text = Text();
    for (const auto& [kind, count] : Cases<const char*, int>{
             {"],", written},
             {"],next ", kills},
         }) {
        std::size_t at = 0;
        for (int line = 0; line < count; ++line) {
            at = text.find(kind + std::to_string(line) + "\r\n", at);
            ASSERT_NE(at, text.npos) << kind << line;
        }
    }
}

TEST_F(LogTest, WaitsForAHeldFileAndGivesUpAfterTenSeconds) {
    CFile viewer(m_folder.Path("log.txt"), CFile::modeCreate | CFile::modeReadWrite | CFile::shareDenyNone);
    std::thread closer([&viewer] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        viewer.Close();
    });
    CLog::LogOut(0, "waited");
    closer.join();
    EXPECT_NE(Text().find("],waited\r\n"), std::string::npos);

    CLog::SetLogFile(m_folder.Path("missing/log.txt"));
    const std::time_t start = std::time(nullptr);
    CLog::LogOut(0, "dropped");
    EXPECT_NEAR(static_cast<double>(std::time(nullptr) - start), 10.5, 1);
}

TEST_F(LogTest, CanLogSaysWhyNotWithoutWaiting) {
    m_folder.Write("kept.txt", "first\r\n");
    m_folder.Write("read.txt", "");
    ASSERT_EQ(::chmod(m_folder.Posix("read.txt").c_str(), 0444), 0);
    CFile viewer(m_folder.Path("held.txt"), CFile::modeCreate | CFile::modeReadWrite | CFile::shareDenyNone);
    const CString folder = m_folder.Path("");
    for (const auto& [path, code, words] :
         Cases<CString, LONG, const char*>{{"", 0, "logging is off"},
                                           {folder, 5, "it is not a file"},
                                           {m_folder.Path("missing/log.txt"), 3, "its folder is missing (code 3)"},
                                           {m_folder.Path("read.txt"), 5, "may not be written"},
                                           {m_folder.Path("held.txt"), 32, "it is open elsewhere"},
                                           {m_folder.Path("kept.txt"), 0, ""},
                                           {m_folder.Path("new.txt"), 0, ""}}) {
        CLog::SetLogFile(path);
        const auto start = std::chrono::steady_clock::now();
        const qel::LogState state = qel::CanLog();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << path;
        EXPECT_EQ(state.code, code) << path;
        EXPECT_EQ(static_cast<bool>(state), *words == '\0') << path;
        EXPECT_NE(state.reason.View().find(words), std::string_view::npos) << state.reason;
    }
    EXPECT_EQ(m_folder.Read("kept.txt"), "first\r\n");
    EXPECT_TRUE(m_folder.Has("new.txt"));
    EXPECT_FALSE(m_folder.Has("missing"));
}

TEST_F(LogTest, TheMessageBufferIsClaimedByOneProcess) {
    EXPECT_EQ(CLog::LockMessageBuffer(), 0);  // no keyword: at once
    const std::string keyword = "qellib10-log-test-" + std::to_string(::getpid());
    CLog::SetLockKeyword(keyword.c_str());
    EXPECT_EQ(CLog::LockMessageBuffer(), 0);
    const HANDLE held = CLog::m_hMessageBuffer;
    EXPECT_NE(held, nullptr);
    EXPECT_EQ(CLog::GetMessageBufferHandle(), held);
    CLog::UnlockMessageBuffer();
    EXPECT_EQ(CLog::GetMessageBufferHandle(), nullptr);
    EXPECT_EQ(CLog::GetMessageBufferSize(), 1024);
}
