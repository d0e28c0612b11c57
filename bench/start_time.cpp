// Starts programs in turn, so that all meet the same moments of the machine, and prints a line for each: its name, and
// the medians of its processor time and of the time by the clock from its start to its exit, in seconds.
//
//   start_time ROUNDS PROGRAM...
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Times {
    explicit Times(const char* program) : path(program) {}

    std::string path;
    std::vector<double> processor, clock;
};

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

bool Start(Times& times) {
    char* arguments[] = {times.path.data(), nullptr};
    char* environment[] = {nullptr};
    pid_t child = 0;
    const auto start = std::chrono::steady_clock::now();
    if (::posix_spawn(&child, times.path.c_str(), nullptr, nullptr, arguments, environment) != 0) return false;
    int status = 0;
    rusage usage = {};
    if (::wait4(child, &status, 0, &usage) != child || status != 0) return false;
    times.clock.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    times.processor.push_back(Seconds(usage.ru_utime) + Seconds(usage.ru_stime));
    return true;
}

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<Times> programs(argv + std::min(argc, 2), argv + argc);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 0;
    for (int round = 0; round < rounds; ++round) {
        for (Times& program : programs) {
            if (Start(program)) continue;
            std::fprintf(stderr, "%s does not run\n", program.path.c_str());
            return 1;
        }
    }
    for (Times& program : programs) {
        const std::string name = program.path.substr(program.path.rfind('/') + 1);
        std::printf("%s %.6f %.6f\n", name.c_str(), Median(program.processor), Median(program.clock));
    }
    return rounds > 0 ? 0 : 2;
}
