#pragma once

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/types.h"

namespace qel {

/// The mutex in the first page of an object's file, mapped into this process. Its owner, a thread, may take it again;
/// the death of an owner, with its process or without, hands it on.
class MappedMutex {
public:
    /// @throws SystemFailure
    explicit MappedMutex(const Descriptor& file);
    /// While a thread of this process owns it the page stays mapped for good: the thread keeps a list of what it owns.
    ~MappedMutex();
    MappedMutex(const MappedMutex&) = delete;
    MappedMutex& operator=(const MappedMutex&) = delete;

    /// Makes a new mutex, free, out of the page.
    void Initialize();

    /// As WaitForMutex (named_mutex.h).
    DWORD Wait(DWORD milliseconds);

    /// Counts what waits have answered; together with Release one call at a time, so that a page that is owned is
    /// known.
    void CountWait(DWORD answer);
    /// @return false for a thread that does not own it
    bool Release();

    /// This process closes it. @param isLast nobody else has it
    /// @return whether the page may serve again: no thread of this process owns it, or ever left it behind owned, and
    /// as the last one found it free
    bool Close(bool isLast);
    /// The file was cut: the list of what a thread owns, which may lead through the page, must not end in a fault.
    void LoseFile();
    /// Takes a page into use whose last holder has closed it. @return false when that one was killed instead
    bool TakeAgain();

private:
    struct Page;

    Page* m_page = nullptr;
    int m_depth = 0;  // waits that threads of this process have not released
};

}  // namespace qel
