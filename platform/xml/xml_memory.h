#pragma once

#include <new>

namespace qel {

/// The parser reports out of memory only by a call's result.
inline void RequireMemory(bool done) {
    if (!done) throw std::bad_alloc();
}

}  // namespace qel
