#include "sampler.h"

#include <chrono>
#include <future>
#include <utility>

namespace viewer {

Sampler::Sampler(Read read, int perSecond) : m_read(std::move(read)) {
    std::promise<void> isKnown;
    m_thread = std::thread([this, perSecond, &isKnown] {
        const CWorkerThreadCtrl control(kType);
        isKnown.set_value();
        auto next = std::chrono::steady_clock::now();
        while (control.IsStop() == 0) {
            next += std::chrono::microseconds(1'000'000 / perSecond);
            std::this_thread::sleep_until(next);
            if (control.IsPause() == 0) ReadOne();
        }
    });
    isKnown.get_future().wait();  // a thread without a record would not be asked to stop
}

Sampler::~Sampler() {
    CWorkerThreadCtrl::StopThread(kType);
    m_thread.join();
}

void Sampler::ReadOne() {
    const CGraphData point = m_read();
    const std::lock_guard lock(m_mutex);
    m_points.push_back(point);
}

std::vector<CGraphData> Sampler::Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_points, {});
}

}  // namespace viewer
