#include "demo/support/progress.h"

#include <fcntl.h>
#include <stdlib.h>

#include "../support/test.h"

namespace {

using std::chrono::milliseconds;

// What a terminal shows of a run that takes so long.
std::string Shown(bool isTerminal, milliseconds after, milliseconds takes) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    EXPECT_EQ(::grantpt(terminal), 0);
    EXPECT_EQ(::unlockpt(terminal), 0);
    const int run = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    const int other = ::open("/dev/null", O_WRONLY);
    {
        const titration::ElapsedLine progress("Working in out", isTerminal ? run : other, after);
        std::this_thread::sleep_for(takes);
    }
    // With the last writer closed, all that was written can be read, in as many parts as the terminal makes of it.
    ::close(run);
    std::string shown;
    char text[256];
    for (ssize_t count = 0; (count = ::read(terminal, text, sizeof text)) > 0;)
        shown.append(text, static_cast<std::size_t>(count));
    ::close(other);
    ::close(terminal);
    return shown;
}

}  // namespace

TEST(ElapsedLine, IsALineOnATerminalWhileARunTakesLong) {
    const milliseconds soon(1), never(60'000), brief(300);
    EXPECT_EQ(Shown(true, soon, brief), "\rWorking in out: 0 s\r\x1B[K");
    EXPECT_EQ(Shown(true, never, milliseconds(0)), "");
    EXPECT_EQ(Shown(false, soon, milliseconds(50)), "");
}
