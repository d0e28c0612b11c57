#pragma once

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <qellib10/qellib10.h>

namespace viewer {

/// Reads points in a separate thread, so that no point is lost while a window is busy or a menu is open. Points wait
/// here until the thread of the window takes them.
class Sampler {
public:
    using Read = std::function<CGraphData()>;

    /// Starts at once. @param read returns the next point; called only by the thread, @p perSecond times per second
    Sampler(Read read, int perSecond);
    /// Waits until the thread ends, which takes no longer than reading a point.
    ~Sampler();
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;

    /// While paused nothing is read.
    void Pause(bool isPaused) { CWorkerThreadCtrl::PauseThread(isPaused ? 1 : 0, kType); }
    /// The points that came in since the last time.
    std::vector<CGraphData> Take();

private:
    static constexpr DWORD kType = 1;  // our threads; an application has a number for each kind

    void ReadOne();

    Read m_read;
    std::mutex m_mutex;
    std::vector<CGraphData> m_points;  // under the mutex
    std::thread m_thread;
};

}  // namespace viewer
