#include "demo/attack/clock_set_back.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>

namespace {

std::atomic<std::time_t> setBackBy = 0;  // seconds

}  // namespace

// The libraries of this program ask here for the time, since a program's functions come before those of libraries.
extern "C" [[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && clock == CLOCK_REALTIME) time->tv_sec -= setBackBy;
    return result;
}

namespace titration {

ClockSetBack::ClockSetBack(std::chrono::seconds by) { setBackBy = by.count(); }
ClockSetBack::~ClockSetBack() { setBackBy = 0; }

}  // namespace titration
