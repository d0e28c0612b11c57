#pragma once

#include <chrono>

namespace qel {

/// Sleeps for @p time, even if signals arrive meanwhile.
void SleepFor(std::chrono::nanoseconds time);

/// Waits for something that another thread or process will release, without spinning and without signals: four yields,
/// then sleeps of 20 us that double up to @p longest. Each sleep varies by half, so that waiters do not wake in step.
///
///     Backoff wait(std::chrono::seconds(10));
///     while (!TryIt()) {
///         if (!wait.Again()) return 0;
///     }
class Backoff {
public:
    explicit Backoff(std::chrono::nanoseconds limit, std::chrono::nanoseconds longest = std::chrono::milliseconds(1));

    /// Waits a little. @return false, without waiting, once the limit since construction has passed
    bool Again();

private:
    std::chrono::steady_clock::time_point m_end;
    std::chrono::nanoseconds m_sleep{20'000};
    std::chrono::nanoseconds m_longest;
    int m_yields = 4;
};

}  // namespace qel
