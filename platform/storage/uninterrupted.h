#pragma once

#include <cerrno>

namespace qel {

/// Repeats a system call that a signal interrupted.
template <class Call> auto Uninterrupted(Call&& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

}  // namespace qel
