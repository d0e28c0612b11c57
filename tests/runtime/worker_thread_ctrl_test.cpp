#include "qellib10/runtime/worker_thread_ctrl.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <thread>

#include "../support/child_process.h"
#include "../support/test.h"
#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/sync/handle.h"

TEST(WorkerThreadCtrl, ActsOnTheFirstRecordOfItsThread) {
    std::optional<CWorkerThreadCtrl> first(3), second(4);
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(3), 1);
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(0), 2);
    CWorkerThreadCtrl::StopThread(4);  // the second record's flag, which nobody looks at
    EXPECT_EQ(second->IsStop(), 0);
    for (const int pause : {7, 0}) {
        CWorkerThreadCtrl::PauseThread(pause, 3);
        EXPECT_EQ(second->IsPause(), pause);
    }
    second.reset();  // takes the first record with it
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(3), 0);
    EXPECT_EQ(first->IsStop(), 1);
    const CWorkerThreadCtrl copy(*first);
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(0), 1);
    first.reset();
    EXPECT_EQ(Line({copy.IsStop(), copy.IsPause()}), "1 0");  // no record left
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(0), 0);
}

TEST(WorkerThreadCtrl, OthersOfATypeStopAndTheAskingOneDoesNot) {
    constexpr DWORD kType = 3, kOtherType = 0;
    std::atomic<int> running = 0;
    const auto work = [&](DWORD type) {
        const CWorkerThreadCtrl control(type);
        ++running;
        while (control.IsStop() == 0 || control.IsPause() != 0) std::this_thread::yield();
    };
    std::thread first(work, kType), second(work, kType), other(work, kOtherType);
    const CWorkerThreadCtrl own(kType);
    while (running != 3) std::this_thread::yield();
    for (int pause = 0; pause < 200; ++pause) CWorkerThreadCtrl::PauseThread(1 - pause % 2, kType);
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(kType), 3);

    own.StopOtherThread(kType);
    first.join();
    second.join();
    EXPECT_EQ(own.IsStop(), 0);
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadCount(0), 2);
    CWorkerThreadCtrl::StopAllThread();
    other.join();
    EXPECT_EQ(own.IsStop(), 1);
}

TEST(WorkerThreadCtrl, RecordsAreReadWithTheirThreads) {
    const CWorkerThreadCtrl own(7);
    std::vector<CWorkerThreadInfo> records;
    std::thread worker([&] {
        const CWorkerThreadCtrl control(8);
        CWorkerThreadCtrl::StopThread(8);
        CWorkerThreadCtrl::PauseThread(5, 7);
        records = CWorkerThreadCtrl::GetThreadInfo();
    });
    const auto handle = worker.native_handle();
    worker.join();  // its record is gone, the copies keep what they hold
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(Line({records[0].m_nType, records[0].m_bStop, records[0].m_bPause}), "7 0 5");
    EXPECT_EQ(Line({records[1].m_nType, records[1].m_bStop, records[1].m_bPause}), "8 1 0");
    EXPECT_EQ(records[0].m_pThread->m_hThread, pthread_self());
    EXPECT_EQ(records[1].m_pThread->m_hThread, handle);
    EXPECT_EQ(records[1].m_pThread->m_nThreadID, records[1].m_nThreadID);
    EXPECT_EQ(CWorkerThreadCtrl::GetThreadInfo().size(), 1u);
}

// Also while another thread uses the table, and named objects, within something else that is locked.
TEST(WorkerThreadCtrl, AForkedChildHasAnEmptyTableThatIsNotLocked) {
    static qel::ForkSafeLock& lock = *new qel::ForkSafeLock;
    const CWorkerThreadCtrl own(1);
    std::atomic<bool> done = false;
    std::thread busy([&] {
        while (!done) {
            const std::lock_guard guard(lock);
            qel::CloseHandle(nullptr);
            CWorkerThreadCtrl::GetThreadCount(0);
        }
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(HoldsInChild([&] {
            EXPECT_EQ(Line({CWorkerThreadCtrl::GetThreadCount(0), own.IsStop()}), "0 1");
        }));
    }
    done = true;
    busy.join();
    EXPECT_EQ(own.IsStop(), 0);
}
