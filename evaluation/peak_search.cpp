#include "qellib10/evaluation/peak_search.h"

namespace qel {

std::vector<FoundPeak> FindPeaks(const std::vector<double>& smoothed, const std::vector<double>& leastHeight) {
    std::vector<std::size_t> tops, valleys;  // a valley before each top
    std::size_t highest = 0, lowest = 0;
    bool isRising = false;
    for (std::size_t i = 0; i < smoothed.size(); ++i) {
        if (isRising) {
            if (smoothed[i] > smoothed[highest]) highest = i;
            if (smoothed[i] < smoothed[highest] - leastHeight[highest]) {
                tops.push_back(highest);
                lowest = i;
                isRising = false;
            }
        } else {
            if (smoothed[i] < smoothed[lowest]) lowest = i;
            if (smoothed[i] > std::max(smoothed[lowest], 0.0) + leastHeight[i]) {
                valleys.push_back(lowest);
                highest = i;
                isRising = true;
            }
        }
    }
    if (isRising) tops.push_back(highest);  // the curve ends in it
    std::vector<FoundPeak> peaks;
    for (std::size_t i = 0; i < tops.size(); ++i) {
        FoundPeak peak{tops[i], tops[i], tops[i], 0, smoothed.size() - 1};
        if (i > 0) peak.start = valleys[i];
        if (i + 1 < tops.size()) peak.end = valleys[i + 1];
        while (peak.first > peak.start && smoothed[peak.first] > 0) --peak.first;
        while (peak.last < peak.end && smoothed[peak.last] > 0) ++peak.last;
        peaks.push_back(peak);
    }
    return peaks;
}

}  // namespace qel
