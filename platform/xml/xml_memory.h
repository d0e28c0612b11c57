#pragma once

#include <new>

namespace qel {

/// The parser reports memory that ran out by the result of a call alone.
inline void RequireMemory(bool done) {
    if (!done) throw std::bad_alloc();
}

}  // namespace qel
