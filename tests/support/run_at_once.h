#pragma once

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "child_process.h"
#include "soak.h"

/// Calls @p body with 0 to @p count - 1, all at once: the even numbers in threads, among which the children for the odd
/// ones are forked. @return how many did not return 0
template <class Body> int RunAtOnce(int count, const Body& body) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr bool kForksFirst = true;  // the sanitizers themselves do not bear it
#else
    constexpr bool kForksFirst = false;
#endif
    Tried("writers", count);
    std::atomic<int> failed = 0;
    std::vector<std::thread> threads;
    std::vector<std::unique_ptr<ChildProcess>> children;
    const auto start = [&](int i) { threads.emplace_back([&, i] { failed += body(i) != 0; }); };
    for (int i = 0; i < count; i += 2) {
        if (!kForksFirst) start(i);
        children.push_back(std::make_unique<ChildProcess>([&, i] { return body(i + 1); }));
    }
    for (int i = 0; kForksFirst && i < count; i += 2) start(i);
    for (std::thread& thread : threads) thread.join();
    for (const auto& child : children) failed += child->Wait() != 0;
    return failed;
}
