#include "qellib10/platform/restart/restart_queue.h"

#include <unistd.h>

#include <random>

#include "../support/run_at_once.h"
#include "../support/test.h"
#include "qellib10/platform/restart/restart_record.h"

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
    ASSERT_TRUE(qel::RestartRecord::Parse(whole));
    EXPECT_EQ(qel::RestartRecord::Parse(whole)->operation.source, record.operation.source);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged(whole);
        damaged[at] ^= 1;
        EXPECT_FALSE(qel::RestartRecord::Parse(damaged)) << at;
        EXPECT_FALSE(qel::RestartRecord::Parse(whole.substr(0, at))) << at;
    }
    // Right sums, wrong content.
    using Operation = qel::RestartOperation;
    for (const Operation& bad : {
             Operation{"relative", "/a"},
             {"/a", "b"},
             {"", ""},
             {{"/a\0", 3}, ""},
         }) {
        const std::string text = qel::RestartRecord{false, "id", bad}.Line();
        EXPECT_FALSE(qel::RestartRecord::Parse(text.substr(0, text.size() - 1)));
    }
}

TEST(RestartQueue, CarriesOutInOrderAndDropsWhatFails) {
    const TempFolder folder;
    folder.Write("a", "1");
    folder.Write("b", "2");
    folder.Write("c", "3");
    std::filesystem::create_directory(folder.Posix("d"));
    const auto path = [&](const char* name) { return folder.Posix(name); };
    folder.Write("q", Earlier(path("a"), path("b")) + "- torn" + '\n' + Earlier(path("d"), "") +  // a folder
                          Earlier(path("gone"), path("b")) + Earlier(path("c"), path("none/c")) +
                          Earlier(path("b"), path("e")) + Earlier(path("c"), "") + "- 0123");
    qel::RestartQueue(path("q")).Add({path("e"), path("f")});  // after the torn line
    EXPECT_EQ(qel::RestartQueue(path("q")).Waiting().size(), 7U);
    EXPECT_EQ(RunOnce(path("q")), 2);
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
    const auto numbers = Words("1 2 3 4 5 6 7 8");
    std::minstd_rand random(SoakSeed());
    for (int kill = SoakCount(60); kill > 0; --kill) {
        const TempFolder folder("/dev/shm");  // where a flush costs nothing
        std::string lines;
        for (const std::string& n : numbers) {
            folder.Write("a" + n, "first");
            folder.Write("c" + n, "second");
            lines += Earlier(folder.Posix("a" + n), folder.Posix("b" + n)) +
                     Earlier(folder.Posix("c" + n), folder.Posix("a" + n));
        }
        folder.Write("q", lines);
        ChildProcess runner([&] { return RunOnce(folder.Posix("q")); });
        ::usleep(static_cast<useconds_t>(random() % 1800));
        runner.Kill();
        EXPECT_EQ(RunOnce(folder.Posix("q")), 0);
        for (const std::string& n : numbers)
            ASSERT_EQ(Line({folder.Read("b" + n), folder.Read("a" + n)}), "first second") << kill;
        EXPECT_EQ(folder.Count(), 16);
    }
}

TEST(RestartQueue, LosesNoRequestThatComesDuringARun) {
    constexpr int kRequests = 100;
    const TempFolder folder("/dev/shm");
    const std::string queue = folder.Posix("q");
    const auto add = [&](int number) {
        for (int i = 0; i < kRequests; ++i) {
            qel::RestartQueue(queue).Add({"/gone", ""});
            if (number == 0) RunOnce(queue);
        }
        return 0;
    };
    EXPECT_EQ(RunAtOnce(2, add), 0);
    EXPECT_EQ(qel::RestartQueue(queue).Waiting().size(), 2U * kRequests);
}
