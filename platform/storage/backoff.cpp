#include "qellib10/platform/storage/backoff.h"

#include <sched.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <random>

namespace qel {

void SleepFor(std::chrono::nanoseconds time) {
    constexpr long kNanosPerSecond = 1'000'000'000;
    timespec left = {static_cast<time_t>(time.count() / kNanosPerSecond),
                     static_cast<long>(time.count() % kNanosPerSecond)};
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
    }
}

Backoff::Backoff(std::chrono::nanoseconds limit, std::chrono::nanoseconds longest)
    : m_end(std::chrono::steady_clock::now() + limit), m_longest(longest) {}

bool Backoff::Again() {
    if (std::chrono::steady_clock::now() >= m_end) return false;
    if (m_yields > 0) {
        --m_yields;
        ::sched_yield();
        return true;
    }
    thread_local std::minstd_rand generator(std::random_device{}());
    std::uniform_real_distribution<double> factor(0.5, 1.5);
    SleepFor(std::chrono::nanoseconds(static_cast<long>(static_cast<double>(m_sleep.count()) * factor(generator))));
    m_sleep = std::min(m_sleep * 2, m_longest);
    return true;
}

}  // namespace qel
