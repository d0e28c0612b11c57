#pragma once

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/types.h"

namespace qel {

/// The mutex in the first page of an object's file, mapped into this process. Its owner, a thread, may lock it again.
/// If an owner dies, with its process or without, the next waiting thread gets it.
class MappedMutex {
public:
    /// @throws SystemFailure
    explicit MappedMutex(const Descriptor& file);
    /// While a thread of this process owns it, the page stays mapped for good: the thread keeps a list of what it owns.
    ~MappedMutex();
    MappedMutex(const MappedMutex&) = delete;
    MappedMutex& operator=(const MappedMutex&) = delete;

    /// Turns the page into a new, free mutex.
    void Initialize();

    /// Like WaitForMutex (named_mutex.h).
    DWORD Wait(DWORD milliseconds);

    /// Counts the result of a wait. Only one call to it or to Release at a time, so that we know when a page is owned.
    void CountWait(DWORD answer);
    /// @return false if the calling thread does not own it
    bool Release();

    /// This process closes it. @param isLast nobody else has it
    /// @return whether the page may be used again: no thread of this process owns it or ever abandoned it, and the last
    /// process to have it found it free
    bool Close(bool isLast);
    /// The file was cut: the list of what a thread owns, which may lead through the page, must not cause a fault.
    void LoseFile();
    /// Whether a thread owns it, or died while it did.
    bool IsOwned() const;
    /// Takes over a page whose last holder has closed it. @return false if that holder was killed instead
    bool TakeAgain();

private:
    struct Page;

    Page* m_page = nullptr;
    int m_depth = 0;  // locks that threads of this process have not released
};

/// Whether @p file, which nobody holds any more, is that of a mutex whose owner died.
bool IsLeftOwned(const Descriptor& file);

}  // namespace qel
