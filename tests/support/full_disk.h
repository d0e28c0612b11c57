#pragma once

#include <sys/resource.h>

#include <csignal>
#include <functional>
#include <random>

#include "child_process.h"
#include "soak.h"

/// The result of @p body in a process of its own whose files cannot grow beyond @p size bytes, as if the disk were
/// full; with a seed of its own the test ends at any size up to that.
inline int OnFullDisk(rlim_t size, const std::function<int()>& body) {
    if (SoakSeed() != 1) size = std::minstd_rand(SoakSeed())() % (size + 1);
    Tried("full disks");
    return InChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {size, size};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return body();
    });
}
