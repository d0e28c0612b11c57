#include "qellib10/platform/storage/restart_queue.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>

#include "../support/child_process.h"
#include "../support/environment_scope.h"
#include "../support/temp_folder.h"
#include "qellib10/platform/storage/restart_record.h"

namespace {

// The line of an operation that an earlier start of the system has requested.
std::string Earlier(const std::string& source, const std::string& target) {
    return qel::RestartRecord{false, "earlier", {source, target}}.Line();
}

int RunOnce(const std::string& queue) {
    int failures = 0;
    qel::RestartQueue(queue).Run([&](const qel::RestartOperation&, int) { ++failures; });
    return failures;
}

}  // namespace

TEST(RestartQueue, KeepsAnyPathAndNoTornLine) {
    const qel::RestartRecord record = {false, "id", {"/a b/%\n\xE8\xA1\xA8", "/c"}};
    const std::string line = record.Line();
    EXPECT_EQ(line.substr(19), "id R /a%20b/%25%0A%E8%A1%A8 /c\n");
    const std::string_view whole = std::string_view(line).substr(0, line.size() - 1);
    const auto parsed = qel::RestartRecord::Parse(whole);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->operation.source, record.operation.source);
    EXPECT_EQ(parsed->operation.target, "/c");
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(qel::RestartRecord::Parse(whole.substr(0, size)));
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged(whole);
        damaged[at] ^= 1;
        EXPECT_FALSE(qel::RestartRecord::Parse(damaged)) << at;
    }
    // Right sums, wrong content.
    for (const qel::RestartOperation& bad : {qel::RestartOperation{"relative", "/a"}, qel::RestartOperation{"/a", "b"},
                                             qel::RestartOperation{"", ""}, qel::RestartOperation{{"/a\0", 3}, ""}}) {
        std::string text = qel::RestartRecord{false, "id", bad}.Line();
        text.pop_back();
        EXPECT_FALSE(qel::RestartRecord::Parse(text));
    }
}

TEST(RestartQueue, WaitsForTheNextStart) {
    const TempFolder folder;
    const EnvironmentScope state("QELLIB10_STATE_DIR", folder.Posix("state").c_str());
    folder.Write("a", "new");
    folder.Write("b", "old");
    folder.Write("c", "");
    qel::MoveFileDelayed(folder.Path("a").View(), folder.Path("b").View());
    qel::DeleteFileDelayed(folder.Path("c").View());
    const std::string queue = folder.Posix("state/pending-moves");
    EXPECT_EQ(RunOnce(queue), 0);  // a second login, not a start of the system
    EXPECT_EQ(folder.Read("b"), "old");
    const auto waiting = qel::RestartQueue(queue).Waiting();
    ASSERT_EQ(waiting.size(), 2U);
    EXPECT_EQ(waiting[0].target, folder.Posix("b"));
    EXPECT_EQ(waiting[1].source, folder.Posix("c"));
    EXPECT_EQ(waiting[1].target, "");
}

TEST(RestartQueue, CarriesOutInOrderAndDropsWhatFails) {
    const TempFolder folder;
    folder.Write("a", "1");
    folder.Write("b", "2");
    folder.Write("c", "3");
    std::filesystem::create_directory(folder.Posix("d"));
    const auto path = [&](const char* name) { return folder.Posix(name); };
    folder.Write("q", Earlier(path("a"), path("b")) + "- torn" + '\n' + Earlier(path("d"), "") +  // a folder
                          Earlier(path("gone"), path("b")) + Earlier(path("b"), path("e")) + Earlier(path("c"), "") +
                          "- 0123");
    qel::RestartQueue(path("q")).Add({path("e"), path("f")});  // behind the torn line
    EXPECT_EQ(qel::RestartQueue(path("q")).Waiting().size(), 6U);
    EXPECT_EQ(RunOnce(path("q")), 1);
    EXPECT_EQ(folder.Read("e"), "1");
    EXPECT_FALSE(folder.Has("c"));
    EXPECT_EQ(qel::RestartQueue(path("q")).Waiting().size(), 1U);  // what was added in this start
    folder.Write("q", Earlier(path("e"), ""));
    EXPECT_EQ(RunOnce(path("q")), 0);
    EXPECT_FALSE(folder.Has("q"));
    EXPECT_EQ(RunOnce(path("q")), 0);
}

// The second line brings back the name that the first one has moved away: done twice, the first would move it again.
TEST(RestartQueue, ComesToTheSameEndHoweverOftenItIsKilled) {
    for (int kill = 0; kill < 60; ++kill) {
        const TempFolder folder("/dev/shm");  // where a flush costs nothing
        std::string lines;
        for (int i = 0; i < 8; ++i) {
            const std::string n = std::to_string(i);
            folder.Write("a" + n, "first");
            folder.Write("c" + n, "second");
            lines += Earlier(folder.Posix("a" + n), folder.Posix("b" + n)) +
                     Earlier(folder.Posix("c" + n), folder.Posix("a" + n));
        }
        folder.Write("q", lines);
        ChildProcess runner([&] { return RunOnce(folder.Posix("q")); });
        ::usleep(static_cast<useconds_t>(kill * 30));
        runner.Kill();
        EXPECT_EQ(RunOnce(folder.Posix("q")), 0);
        for (int i = 0; i < 8; ++i) {
            const std::string n = std::to_string(i);
            ASSERT_EQ(folder.Read("b" + n), "first") << kill;
            ASSERT_EQ(folder.Read("a" + n), "second") << kill;
        }
        EXPECT_EQ(folder.Count(), 16);
    }
}

TEST(RestartQueue, LosesNoRequestThatComesDuringARun) {
    constexpr int kRequests = 100;
    const TempFolder folder("/dev/shm");
    const std::string queue = folder.Posix("q");
    ChildProcess adder([&] {
        for (int i = 0; i < kRequests; ++i) qel::RestartQueue(queue).Add({"/gone", ""});
        return 0;
    });
    ChildProcess runner([&] {
        for (int i = 0; i < kRequests; ++i) {
            qel::RestartQueue(queue).Add({"/gone", ""});
            RunOnce(queue);
        }
        return 0;
    });
    EXPECT_EQ(adder.Wait(), 0);
    EXPECT_EQ(runner.Wait(), 0);
    EXPECT_EQ(qel::RestartQueue(queue).Waiting().size(), 2U * kRequests);
}
