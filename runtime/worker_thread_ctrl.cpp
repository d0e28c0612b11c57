#include "qellib10/runtime/worker_thread_ctrl.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/sync/thread.h"

namespace {

// The process's workers. Never destroyed: a worker may continue after all statics are gone.
struct ThreadTable {
    std::vector<CWorkerThreadInfo> m_aryThread;
    qel::ForkSafeLock m_csThreadData{[] { Get().m_aryThread.clear(); }};

    static ThreadTable& Get() {
        static ThreadTable& table = *new ThreadTable;
        return table;
    }
};

// Created at load, so that no thread is creating it while another forks.
[[maybe_unused]] const ThreadTable& theTableIsMadeAtLoad = ThreadTable::Get();

// Runs @p action on the table's records and returns its result; nobody else reads or changes them meanwhile.
template <typename Action> auto WithThreads(Action&& action) {
    ThreadTable& table = ThreadTable::Get();
    const std::lock_guard lock(table.m_csThreadData);
    return action(table.m_aryThread);
}

template <typename Action> void ForEachThread(Action&& action) {
    WithThreads([&](auto& threads) { std::ranges::for_each(threads, action); });
}

// A flag of the thread's first record. Not the record itself, whose pointer is reference counted: workers call this in
// their inner loop.
int FlagOf(DWORD thread, int CWorkerThreadInfo::*flag, int withoutRecord) {
    return WithThreads([&](const auto& threads) {
        const auto record = std::ranges::find(threads, thread, &CWorkerThreadInfo::m_nThreadID);
        return record != threads.end() ? (*record).*flag : withoutRecord;
    });
}

}  // namespace

CWorkerThreadCtrl::CWorkerThreadCtrl(DWORD type) : m_nThreadID(qel::CurrentThreadId()) {
    CWorkerThreadInfo record;
    record.m_nThreadID = m_nThreadID;
    record.m_pThread = std::make_shared<const CWinThread>(CWinThread{m_nThreadID, qel::CurrentThreadHandle()});
    record.m_nType = type;
    WithThreads([&](auto& threads) { threads.push_back(record); });
}

CWorkerThreadCtrl::~CWorkerThreadCtrl() {
    WithThreads([&](auto& threads) {
        const auto record = std::ranges::find(threads, m_nThreadID, &CWorkerThreadInfo::m_nThreadID);
        if (record != threads.end()) threads.erase(record);
    });
}

int CWorkerThreadCtrl::IsStop() const { return FlagOf(m_nThreadID, &CWorkerThreadInfo::m_bStop, 1); }

int CWorkerThreadCtrl::IsPause() const { return FlagOf(m_nThreadID, &CWorkerThreadInfo::m_bPause, 0); }

void CWorkerThreadCtrl::StopOtherThread(DWORD type) const {
    ForEachThread([&](auto& record) {
        if (record.m_nType == type && record.m_nThreadID != m_nThreadID) record.m_bStop = 1;
    });
}

void CWorkerThreadCtrl::StopThread(DWORD type) {
    ForEachThread([&](auto& record) {
        if (record.m_nType == type) record.m_bStop = 1;
    });
}

void CWorkerThreadCtrl::StopAllThread() {
    ForEachThread([](auto& record) { record.m_bStop = 1; });
}

void CWorkerThreadCtrl::PauseThread(int pause, DWORD type) {
    ForEachThread([&](auto& record) {
        if (record.m_nType == type) record.m_bPause = pause;
    });
}

int CWorkerThreadCtrl::GetThreadCount(DWORD type) {
    return WithThreads([&](const auto& threads) {
        return static_cast<int>(
            std::ranges::count_if(threads, [&](const auto& record) { return type == 0 || record.m_nType == type; }));
    });
}

std::vector<CWorkerThreadInfo> CWorkerThreadCtrl::GetThreadInfo() {
    return WithThreads([](const auto& threads) { return threads; });
}
