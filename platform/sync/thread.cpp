#include "qellib10/platform/sync/thread.h"

#include <pthread.h>
#include <unistd.h>

#include <new>

namespace qel {

namespace {

thread_local DWORD ownId = 0;  // asked for once: the system's call costs as much as a free mutex taken and released

}  // namespace

DWORD CurrentThreadId() {
    [[maybe_unused]] static const bool forgetsInChild = (AtFork(nullptr, nullptr, [] { ownId = 0; }), true);
    if (ownId == 0) ownId = static_cast<DWORD>(::gettid());
    return ownId;
}

void AtFork(void (*before)(), void (*inParent)(), void (*inChild)()) {
    if (::pthread_atfork(before, inParent, inChild) != 0) throw std::bad_alloc();  // its only failure
}

}  // namespace qel
