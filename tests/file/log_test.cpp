#include "qellib10/file/log.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "qellib10/platform/shell/debug_output.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/tests/support/child_process.h"
#include "qellib10/tests/support/temp_folder.h"

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

// Every digit of a time, which stands in brackets, as 0.
std::string WithZeroTimes(std::string text) {
    bool isTime = false;
    for (char& character : text) {
        if (character == '[' || character == ']') isTime = character == '[';
        if (isTime && character >= '0' && character <= '9') character = '0';
    }
    return text;
}

}  // namespace

TEST_F(LogTest, ALineHasItsTimeAndADumpItsRuns) {
    const auto before = qel::SetDebugOutputHook([](const char* text) { theDebugOutput += text; });
    CLog::LogOut(0, "seventeen", "0123456789\r\ndef\xB1g", 17);
    CLog::LogOut(0, "nothing", "x", 0);
    qel::SetDebugOutputHook(before);
    const std::string time = "[0000/00/00 00:00:00],";
    EXPECT_EQ(WithZeroTimes(Text()), time +
                                         "seventeen\r\n"
                                         "30 31 32 33 34 35 36 37 38 39 0D 0A 64 65 66 B1  0123456789\r\ndef\xB1\r\n"
                                         "67  g\r\n" +
                                         time + "nothing\r\n");
    EXPECT_EQ(WithZeroTimes(theDebugOutput), time + "seventeen\r\n" + time + "nothing\r\n");
}

TEST_F(LogTest, OnlyLevelsUpToTheThresholdAreWritten) {
    for (const int level : {1, 0, -1}) CLog::LogOut(level, std::to_string(level).c_str());
    CLog::SetLogLevel(1);
    CLog::LogOut(1, "one");
    CLog::SetLogFile(nullptr);
    CLog::LogOut(0, "off");
    const std::string text = Text();
    EXPECT_EQ(std::ranges::count(text, '\n'), 3);
    EXPECT_NE(text.find("],one\r\n"), std::string::npos);
}

TEST_F(LogTest, EightProcessesOfTwoThreadsLoseAndMixNoLine) {
    constexpr int kProcesses = 8, kThreads = 2, kLines = 500;
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int process = 0; process < kProcesses; ++process) {
        children.push_back(std::make_unique<ChildProcess>([process] {
            std::vector<std::thread> threads;
            for (int thread = 0; thread < kThreads; ++thread) {
                threads.emplace_back([name = std::to_string(process) + "." + std::to_string(thread) + " "] {
                    for (int line = 0; line < kLines; ++line) CLog::LogOut(0, (name + std::to_string(line)).c_str());
                });
            }
            for (std::thread& thread : threads) thread.join();
            return 0;
        }));
    }
    for (auto& child : children) EXPECT_EQ(child->Wait(), 0);
    std::map<std::string, int> next;  // each writer's lines are whole and in order
    std::istringstream text(Text());
    for (std::string line; std::getline(text, line);) {
        const std::size_t blank = line.find(' ', 23);
        ASSERT_NE(blank, std::string::npos) << line;
        EXPECT_EQ(line.substr(blank), " " + std::to_string(next[line.substr(22, blank - 22)]++) + "\r");
    }
    EXPECT_EQ(next.size(), static_cast<std::size_t>(kProcesses * kThreads));
    for (const auto& [writer, lines] : next) EXPECT_EQ(lines, kLines) << writer;
}

// Children were forked while the thread had its turn, waited for it until their patience was at its end, and dropped
// their line.
TEST_F(LogTest, ChildrenForkedWhileAThreadLogsLoseNoLine) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "their own locks are not safe in a child";
#endif
    constexpr int kChildren = 50;
    std::atomic<bool> isOver = false;
    std::thread other([&isOver] {
        for (int line = 0; !isOver; ++line) CLog::LogOut(0, "thread", &line, line % 2 * 4);
    });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(9);
    for (int child = 0; child < kChildren && std::chrono::steady_clock::now() < end; ++child) {
        EXPECT_EQ(InChild([] {
                      CLog::SetLogLevel(1);
                      CLog::LogOut(1, "child");
                      return 0;
                  }),
                  0);
    }
    isOver = true;
    other.join();
    const std::string text = Text();
    int found = 0;
    for (std::size_t at = 0; (at = text.find("],child\r\n", at)) != std::string::npos; ++at) ++found;
    EXPECT_EQ(found, kChildren);
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
    const auto start = std::chrono::steady_clock::now();
    CLog::LogOut(0, "dropped");
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GT(taken, std::chrono::seconds(8));
    EXPECT_LT(taken, std::chrono::seconds(12));
}

TEST_F(LogTest, TheMessageBufferIsClaimedByOneProcess) {
    EXPECT_EQ(CLog::LockMessageBuffer(), 0);  // no keyword: at once
    const std::string keyword = "qellib10-log-test-" + std::to_string(::getpid());
    CLog::SetLockKeyword(keyword.c_str());
    EXPECT_EQ(CLog::LockMessageBuffer(), 0);
    EXPECT_NE(CLog::GetMessageBufferHandle(), nullptr);
    CLog::UnlockMessageBuffer();
    EXPECT_EQ(CLog::GetMessageBufferHandle(), nullptr);
    EXPECT_EQ(CLog::GetMessageBufferSize(), 1024);
}
