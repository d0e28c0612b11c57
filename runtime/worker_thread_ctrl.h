#pragma once

#include <memory>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// A thread as the system knows it: for setting its name, its priority and the like.
struct CWinThread {
    DWORD m_nThreadID = 0;
    unsigned long m_hThread = 0;  ///< its pthread_t; valid while the thread runs
};

/// The record of one worker thread.
struct CWorkerThreadInfo {
    DWORD m_nThreadID = 0;
    std::shared_ptr<const CWinThread> m_pThread;  ///< never null in a record; kept by copies of the record
    int m_bStop = 0;                              ///< 1 once it was asked to stop
    int m_bPause = 0;                             ///< the last argument of PauseThread
    DWORD m_nType = 0;
};

/// Lets any thread ask worker threads to stop or to pause. A worker that is ended from outside leaves half a telegram
/// or half a file; one that is asked ends where its work is whole. A worker creates its own object when it starts,
/// checks IsStop and IsPause in its loop, and destroys the object when it ends. Nothing is forced on it; it decides
/// itself what pausing means.
///
/// @code
/// const auto measure = [] {                // what the worker's thread runs
///     const CWorkerThreadCtrl control(1);  // 1: our number for measuring
///     while (!control.IsStop()) {
///         // takes one reading, unless IsPause() says to wait
///     }
/// };
/// CWorkerThreadCtrl::StopThread(1);  // in the window that closes, before it joins the worker's thread
/// @endcode
///
/// Only workers with a record are asked: one that starts later, or has not created its object yet, runs on.
///
/// The process has one table with a record for each object that was created (copies have none), in the order of
/// creation. Threads are identified by the system's number: of two objects created in one thread, IsStop, IsPause and
/// the destructor use the record of the first. If a worker ended without removing its record, a later thread with the
/// same number finds it. The child of a fork starts with an empty table, so a worker that continues in it counts as
/// stopped.
///
/// All operations are safe from any thread.
class QELLIB10_API CWorkerThreadCtrl {
public:
    /// Records the calling thread as a worker of @p type, a number that the caller chooses for its work.
    explicit CWorkerThreadCtrl(DWORD type = 0);
    CWorkerThreadCtrl(const CWorkerThreadCtrl&) = default;
    CWorkerThreadCtrl& operator=(const CWorkerThreadCtrl&) = default;
    /// Removes the first record of the thread that created this object, or the original of this copy.
    virtual ~CWorkerThreadCtrl();

    /// 1 if the worker should end; also if it has no record. Once 1, it stays 1.
    int IsStop() const;
    /// The last argument of PauseThread, 0 without a record.
    int IsPause() const;

    /// Asks all workers of @p type except this one to stop.
    void StopOtherThread(DWORD type) const;
    /// Asks all workers of @p type to stop, including the caller.
    static void StopThread(DWORD type);
    static void StopAllThread();
    /// Asks all workers of @p type to pause, or with 0 to continue.
    static void PauseThread(int pause, DWORD type);

    /// The number of workers of @p type; 0 counts all, so those of type 0 cannot be counted separately.
    static int GetThreadCount(DWORD type);

    /// The records of all workers at this moment, in the order of creation.
    static std::vector<CWorkerThreadInfo> GetThreadInfo();

private:
    DWORD m_nThreadID;
};
