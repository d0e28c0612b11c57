#pragma once

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <qellib10/qellib10.h>

namespace viewer {

/// Reads points in a thread of its own, so that a window that is busy, or a menu that stands open, loses none. Points
/// wait here until the thread of the window takes them.
class Sampler {
public:
    using Read = std::function<CGraphData()>;

    /// Begins at once. @param read gives the next point; called by the thread alone, @p perSecond times a second
    Sampler(Read read, int perSecond);
    /// Waits for the thread to end, which takes no longer than reading a point.
    ~Sampler();
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    /// While paused nothing is read.
    void Pause(bool isPaused) { CWorkerThreadCtrl::PauseThread(isPaused ? 1 : 0, kType); }
    /// The points that came in since the last time.
    std::vector<CGraphData> Take();

private:
    static constexpr DWORD kType = 1;  // of our threads; an application has a number for each of its kinds

    void ReadOne();

    Read m_read;
    std::mutex m_mutex;
    std::vector<CGraphData> m_points;  // under the mutex
    std::thread m_thread;
};

}  // namespace viewer
