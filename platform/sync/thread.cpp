#include "qellib10/platform/sync/thread.h"

#include <pthread.h>
#include <unistd.h>

#include <new>
#include <type_traits>

namespace qel {
namespace {

thread_local DWORD ownId = 0;  // cached: the system call costs as much as locking and unlocking a free mutex

[[maybe_unused]] const bool theChildForgetsIt = [] {
    if (::pthread_atfork(nullptr, nullptr, [] { ownId = 0; }) != 0) throw std::bad_alloc();  // its only failure
    return true;
}();

}  // namespace

DWORD CurrentThreadId() {
    if (ownId == 0) ownId = static_cast<DWORD>(::gettid());
    return ownId;
}

unsigned long CurrentThreadHandle() {
    static_assert(std::is_same_v<pthread_t, unsigned long>);
    return ::pthread_self();
}

}  // namespace qel
