#include "workers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "progress.h"

namespace tool {

unsigned Processors() { return std::max(std::thread::hardware_concurrency(), 1u); }

void ForEachAtOnce(std::size_t count, unsigned jobs, const std::function<void(std::size_t number)>& work) {
    std::atomic<std::size_t> next = 0, done = 0;
    const auto take = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            work(i);
            ++done;
        }
    };
    const ProgressBar progress(count);
    std::vector<std::jthread> workers;
    for (std::size_t i = 0; i < std::min<std::size_t>(jobs, count); ++i) workers.emplace_back(take);
    for (; progress.IsShown() && done < count; std::this_thread::sleep_for(std::chrono::milliseconds(20)))
        progress.Show(done);
}

}  // namespace tool
