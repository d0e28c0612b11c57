#pragma once

#include <sys/resource.h>

#include <csignal>

/// In a process of its own: files cannot grow beyond @p size bytes from now on, as if the disk were full.
inline void FillDiskAt(rlim_t size) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {size, size};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}
