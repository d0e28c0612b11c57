#pragma once

#include <memory>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// A thread as the system knows it: for its name, its priority and the like.
struct CWinThread {
    DWORD m_nThreadID = 0;
    unsigned long m_hThread = 0;  ///< its pthread_t; good while the thread runs
};

/// What the process knows of one worker thread.
struct CWorkerThreadInfo {
    DWORD m_nThreadID = 0;
    std::shared_ptr<const CWinThread> m_pThread;  ///< never null in a record; kept by copies of the record
    int m_bStop = 0;                              ///< 1 once it was asked to stop
    int m_bPause = 0;                             ///< what PauseThread said last
    DWORD m_nType = 0;
};

/// Lets any thread ask worker threads to stop or to pause. A worker makes an object of its own at its start, asks
/// IsStop and IsPause in its loop, and destroys the object when it ends; nothing is forced on it, and what pausing
/// means is its own affair.
///
/// The process keeps one table, a record for each object that was made (copies have none), in the order of their
/// making. Threads are told apart by the system's number: of two objects made in one thread, IsStop, IsPause and the
/// destructor act on the record of the first. A record whose worker ended without removing it is found by a later
/// thread with the same number. The child of a fork begins with an empty table, so a worker that goes on in it counts
/// as stopped.
///
/// All operations are safe from any thread.
class QELLIB10_API CWorkerThreadCtrl {
public:
    /// Records the calling thread as a worker of @p type, the caller's own number for what it does.
    explicit CWorkerThreadCtrl(DWORD type = 0);
    CWorkerThreadCtrl(const CWorkerThreadCtrl&) = default;
    CWorkerThreadCtrl& operator=(const CWorkerThreadCtrl&) = default;
    /// Removes the first record of the thread that made this object, or the original of this copy.
    virtual ~CWorkerThreadCtrl();

    /// 1 when the worker is to end; also when it has no record. Once 1, it stays.
    int IsStop() const;
    /// What PauseThread said last, 0 without a record.
    int IsPause() const;

    /// Asks all workers of @p type but this one to stop.
    void StopOtherThread(DWORD type) const;
    /// Asks all workers of @p type to stop, the caller too.
    static void StopThread(DWORD type);
    static void StopAllThread();
    /// Tells all workers of @p type to pause, or with 0 to go on.
    static void PauseThread(int pause, DWORD type);

    /// How many workers of @p type there are; 0 counts all, so that those of type 0 cannot be counted alone.
    static int GetThreadCount(DWORD type);

    /// The records of all workers as they are at this moment, in the order of their making.
    static std::vector<CWorkerThreadInfo> GetThreadInfo();

private:
    DWORD m_nThreadID;
};
