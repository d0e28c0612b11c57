#include "qellib10/evaluation/peak_overlap.h"

#include <cmath>
#include <numbers>

namespace qel {

PeakOverlap::PeakOverlap(const PeakCurve& curve, const FoundPeak& found) {
    const std::vector<double>&smoothed = curve.smoothed, &x = curve.data.x;
    const auto top = static_cast<std::ptrdiff_t>(found.top), count = std::ssize(smoothed);
    for (const auto& [at, isShared] :
         {std::pair(found.first, found.first == found.start && found.start > 0),
          std::pair(found.last, found.last == found.end && found.end + 1 < smoothed.size())}) {
        const double half = smoothed[found.top] / 2;
        if (!isShared || !(smoothed[at] > 0)) continue;
        const auto valley = static_cast<std::ptrdiff_t>(at);
        const std::ptrdiff_t outwards = valley > top ? 1 : -1;
        const auto value = [&](std::ptrdiff_t i) { return smoothed[static_cast<std::size_t>(i)]; };
        const auto away = [&](std::ptrdiff_t i) { return std::abs(x[static_cast<std::size_t>(i)] - x[at]); };
        std::ptrdiff_t side = top, beyond = valley;
        while (side != valley && value(side) > half) side += outwards;
        while (beyond + outwards >= 0 && beyond + outwards < count && value(beyond) < std::numbers::e * smoothed[at])
            beyond += outwards;
        const double tail = value(valley) < half ? away(side) / std::log(half / value(valley)) : away(top);
        m_valleys.push_back({x[at], smoothed[at], tail, away(beyond)});
    }
}

double PeakOverlap::OfArea() const {
    double area = 0;
    for (const Valley& valley : m_valleys) area = std::hypot(area, valley.height * valley.tail);
    return area;
}

// Half of the valley's height is that of the peak beside.
double PeakOverlap::At(double place) const {
    double signal = 0;
    for (const Valley& valley : m_valleys) {
        if (valley.beside > 0)
            signal = std::hypot(signal, valley.height / 2 * std::exp(-std::abs(place - valley.place) / valley.beside));
    }
    return signal;
}

}  // namespace qel
